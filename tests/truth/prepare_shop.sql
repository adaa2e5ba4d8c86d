-- "like" as in PostgreSQL.
pragma case_sensitive_like = on;
pragma synchronous = off;

-- Fewer rows, so that joins stay fast.
delete from returns where order_id > 1400;
delete from shipments where order_id > 1120;
delete from payments where order_id > 1120;
delete from "Order Lines" where order_id > 1120;
delete from orders where order_id > 1120;
delete from customers where customer_id > 40 and customer_id not in (select customer_id from orders);

-- Amounts are multiples of a half: sums are exact in binary and in decimal.
update products set list_price = round(list_price * 2) / 2, weight_kg = round(weight_kg * 2) / 2;
update orders set freight = round(freight * 2) / 2, total = round(total * 2) / 2;
update "Order Lines" set unit_price = round(unit_price), discount = case when discount > 0 then 0.5 else 0 end;
update payments set amount = round(amount * 2) / 2;
update shipments set weight_kg = round(weight_kg * 2) / 2;

-- Quotes, wildcards, backslashes, empty texts, nulls, keys that lead nowhere, rows that are alike.
insert into countries values
  (90, 'O''Land', 'OL', '', 0), (91, 'x_y%z', '%_', 'Europe', 1);
insert into customers values
  (901, '', 'D''Arcy', '"Quo"te', null, '', 'a_b', '100%', '50%x', 999, '2021-01-08', 1, 0, ''),
  (902, null, '', 'Größe', 'a\b', '%', 'back\slash', '_', 'O''Hara', 90, '2021-01-08', 0, null, 'it''s 50%\ off_'),
  (903, 'O''Hara', 'Ålesund', 'ålesund', null, null, 'a b', 'A', 'a', 91, '1899-12-30', 1, 12.5, 'two
lines');
insert into employees values
  (90, 'No', 'Boss', 'O''Chief', 999, '1970-01-01', '2021-01-08', 0, '00:00:00', null, 0);
insert into suppliers values (90, 'Nobody', 'Oslo', 999, null, null);
insert into categories values (90, '%', null), (91, '', '');
insert into products values
  (900, 'a\b', 999, 90, 10, 0, null, '2021-01-08', 0), (901, 'A, "b"', 90, 999, -2.5, -7, 0, '2020-12-31', 1);
insert into orders values
  (2001, 901, 90, '2021-01-08', '2021-01-08 00:00:00', null, '', '%', 0, 0, ''),
  (2002, 999, 999, '2021-02-28', '2021-02-28 23:59:59', '2021-03-01', 'new', 'web', -2.5, 3, null),
  (2003, 902, 1, '1899-12-30', '1899-12-30 14:30:00', null, 'n_w', 'web', 0.5, 0.5, '\'),
  (2004, 903, 1, '2021-03-01', '2021-03-01 14:30:00', null, 'new', 'shop', 5, 1000, 'O''Hara');
insert into "Order Lines" values
  (2001, 1, 900, 1, 10, 0, ''), (2001, 2, 901, 7, 4, 0.5, 'O''Hara'),
  (2002, 1, 999, 0, 3, 0, '%_\'), (2999, 1, 900, 2, 8, 0.5, null);
insert into payments values
  (9001, 2001, '2021-01-08', '', 0, null), (9002, 2001, '2021-01-08', '', 0, null),
  (9003, 2999, '2021-01-09', 'card', 3, 'a\b');
insert into shipments values
  (9001, 2001, 99, '2021-01-08', null, null, null), (9002, 2002, 1, '2021-01-09', '2021-01-09 12:00:00', '', 0);
insert into returns values
  (901, 2001, 1, '2021-01-08', 1, 'O''Hara', 0), (902, 2001, 9, '2021-01-08', 1, '', 1),
  (903, 2999, 1, '2021-01-10', 2, 'a_b', 1);
