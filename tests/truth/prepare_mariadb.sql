-- Texts are sorted and compared by their bytes, as in SQLite. A formula may have a blank before its bracket. An
-- average has more digits than are compared.
alter database character set utf8mb4 collate utf8mb4_nopad_bin;
set session sql_mode = concat(@@sql_mode, ',IGNORE_SPACE');
set session div_precision_increment = 12;

-- The functions that the sample model takes from SQLite.
create function julianday(day date) returns decimal(20,1) deterministic
  return to_days(day) - to_days('2000-01-01') + 2451544.5;
create function strftime(format varchar(20), at datetime) returns varchar(4) deterministic
  return date_format(at, format);

-- Tables without indexes are joined by hashing.
set session join_cache_level = 8;
set session optimizer_search_depth = 0;
