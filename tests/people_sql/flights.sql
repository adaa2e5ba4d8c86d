create table airline (uid integer primary key, airline varchar(40), country varchar(40));
create table airport (code char(3) primary key, city varchar(40), runways integer);
create table flight (no integer primary key, airline integer references airline (uid), origin char(3) not null references airport (code), destination char(3) references airport (code), price real);
insert into airline values (1,'North Air','Norway'),(2,'Blue','Spain'),(3,'Idle',null);
insert into airport values ('OSL','Oslo',2),('BGO','Bergen',1),('MAD','Madrid',4),('TRD','Trondheim',null);
insert into flight values (10,1,'OSL','BGO',50),(11,1,'BGO','OSL',55.5),(12,2,'MAD','OSL',120),(13,null,'OSL','MAD',null),(14,2,'MAD',null,80);
-- statements
SELECT count(*) FROM flight WHERE origin = 'OSL'
SELECT no FROM flight WHERE origin = "OSL" AND destination = "BGO"
SELECT T1.no FROM flight AS T1 JOIN airport AS T2 ON T1.destination = T2.code WHERE T2.city = 'Oslo'
SELECT T1.no FROM flight AS T1 JOIN airport AS T2 ON T1.origin = T2.code WHERE T2.city = 'Oslo'
SELECT f.no FROM flight f JOIN airport a ON f.origin = a.code JOIN airport b ON f.destination = b.code WHERE a.city = 'Oslo' AND b.city = 'Bergen'
SELECT f.no, b.city FROM flight f JOIN airport b ON b.code = f.destination JOIN airport a ON a.code = f.origin WHERE a.runways > 1
SELECT T1.airline, count(*) FROM airline AS T1 JOIN flight AS T2 ON T1.uid = T2.airline GROUP BY T1.airline
SELECT airline FROM airline WHERE uid NOT IN (SELECT airline FROM flight WHERE airline IS NOT NULL)
SELECT T2.city, count(*) FROM flight T1 JOIN airport T2 ON T1.destination = T2.code GROUP BY T2.city ORDER BY count(*) DESC, T2.city
SELECT city FROM airport ORDER BY runways DESC, city
SELECT country FROM airline WHERE airline = "North Air"
SELECT code, city FROM airport WHERE runways >= 2 OR runways IS NULL
SELECT T1.airline FROM airline T1, flight T2, airport T3 WHERE T1.uid = T2.airline AND T2.origin = T3.code AND T3.city = 'Bergen'
SELECT avg(price) FROM flight AS T1 INNER JOIN airline AS T2 ON T1.airline = T2.uid WHERE T2.country = 'Spain'
SELECT airport.city FROM airport JOIN flight ON airport.code = flight.origin
! another use | SELECT a.no FROM flight a JOIN flight b ON a.origin = b.destination
! "code" may be | SELECT code FROM flight f JOIN airport a ON f.origin = a.code JOIN airport b ON f.destination = b.code
