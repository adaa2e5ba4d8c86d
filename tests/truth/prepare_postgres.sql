-- The functions that the sample model takes from SQLite.
create function julianday(day date) returns numeric language sql immutable
  as 'select (day - date ''2000-01-01'') + 2451544.5';
create function strftime(format text, at timestamp) returns text language sql immutable
  as 'select to_char(at, ''YYYY'')';

-- Plans are for few rows and many tables.
set jit = off;
set geqo_threshold = 6;
