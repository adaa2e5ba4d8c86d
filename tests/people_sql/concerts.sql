create table venue (venue_id integer primary key, name varchar(40), city varchar(40), seats integer);
create table artist (artist_id integer primary key, name varchar(40), country varchar(30), age integer, fee real);
create table show (show_id integer primary key, title varchar(60), theme varchar(40), venue_id integer references venue (venue_id), season integer);
create table lineup (show_id integer not null references show (show_id), artist_id integer not null references artist (artist_id), slot integer, primary key (show_id, artist_id));
insert into venue values (1,'Old Mill','Bergen',300),(2,'Harbour Hall','Oslo',1200),(3,'Tent',null,80),(4,'Arena','Oslo',null);
insert into artist values (1,'Anna','Norway',31,1500.5),(2,'Bo','Sweden',null,900),(3,'Cleo','Norway',45,null),(4,'Dag',null,22,900),(5,'Eva_1','France',31,50),(6,'100% Fun','France',19,2000);
insert into show values (1,'Opening','Free',1,2019),(2,'Summer','Free',2,2019),(3,'Winter','Ice',2,2020),(4,'Lost',null,null,2020),(5,'Closing','Ice',1,null);
insert into lineup values (1,1,1),(1,2,2),(2,1,1),(2,3,null),(3,4,1),(4,5,1),(4,1,2);
-- statements
select count(*) from artist
SELECT count(*) AS total FROM artist WHERE age > 30
SELECT name, country, age FROM artist ORDER BY age DESC
SELECT avg(age), min(age), max(age) FROM artist WHERE country = 'France'
SELECT title, theme FROM show WHERE season = 2019 OR season = 2020
SELECT DISTINCT country FROM artist WHERE age > 20
SELECT country, count(*) FROM artist GROUP BY country
SELECT title FROM show ORDER BY season DESC, title
SELECT T2.name, count(*) FROM show AS T1 JOIN venue AS T2 ON T1.venue_id = T2.venue_id GROUP BY T1.venue_id
SELECT T2.name, T2.seats FROM show AS T1 JOIN venue AS T2 ON T1.venue_id = T2.venue_id WHERE T1.season >= 2019
SELECT name FROM venue WHERE venue_id NOT IN (SELECT venue_id FROM show WHERE venue_id IS NOT NULL)
SELECT name FROM venue WHERE venue_id NOT IN (SELECT venue_id FROM show)
SELECT name FROM venue WHERE venue_id IN (SELECT venue_id FROM show WHERE theme = "Ice")
SELECT name, city FROM venue WHERE seats BETWEEN 100 AND 1200
SELECT name FROM artist WHERE name LIKE '%o%'
SELECT name FROM artist WHERE name LIKE 'A%'
SELECT name FROM artist WHERE name LIKE '%a'
SELECT name FROM artist WHERE name LIKE '%a_1%'
SELECT name FROM artist WHERE name NOT LIKE '%a%'
SELECT T3.name FROM show AS T1 JOIN lineup AS T2 ON T1.show_id = T2.show_id JOIN artist AS T3 ON T2.artist_id = T3.artist_id WHERE T1.season = 2019
SELECT T1.name, count(*) FROM artist AS T1 JOIN lineup AS T2 ON T2.artist_id = T1.artist_id GROUP BY T1.name
SELECT T1.name, count(*) FROM artist AS T1 JOIN lineup AS T2 ON T1.artist_id = T2.artist_id GROUP BY T1.artist_id
SELECT a.name FROM artist a, lineup l WHERE a.artist_id = l.artist_id AND l.slot = 1
SELECT name, age FROM artist WHERE age < (SELECT avg(age) FROM artist)
SELECT name FROM artist WHERE age = (SELECT max(age) FROM artist)
SELECT sum(fee) FROM artist WHERE country != 'France'
SELECT count(DISTINCT country) FROM artist
SELECT country FROM artist GROUP BY country
SELECT country FROM artist GROUP BY country ORDER BY count(*) DESC
SELECT theme, count(*) FROM show GROUP BY theme ORDER BY count(*)
SELECT name FROM artist ORDER BY fee
SELECT name, fee * 2 FROM artist WHERE fee IS NOT NULL
SELECT max(fee) - min(fee) FROM artist
SELECT title FROM show WHERE theme IS NULL
SELECT title FROM show WHERE NOT theme = 'Ice'
SELECT title FROM show WHERE theme <> 'Ice'
SELECT name FROM artist WHERE country IN ('Norway', 'Sweden')
SELECT name FROM artist WHERE country NOT IN ('Norway', 'Sweden')
SELECT name FROM artist WHERE age NOT BETWEEN 20 AND 40
SELECT name FROM artist WHERE 30 < age
SELECT name FROM artist WHERE country IS DISTINCT FROM 'France'
SELECT name FROM artist WHERE country IS NOT DISTINCT FROM 'France'
SELECT "name", `age`, [fee] FROM "artist" WHERE `country` = "Norway"
SELECT artist.name FROM main.artist WHERE main.artist.age >= 31
SELECT T1.title, T2.city FROM show AS T1 LEFT JOIN venue AS T2 ON T1.venue_id = T2.venue_id
SELECT T2.title, T1.name FROM venue AS T1 LEFT OUTER JOIN show AS T2 ON T1.venue_id = T2.venue_id
SELECT T1.title FROM show AS T1 JOIN venue AS T2 ON T1.venue_id = T2.venue_id
SELECT count(*) FROM show AS T1 JOIN lineup AS T2 ON T1.show_id = T2.show_id
SELECT * FROM show
SELECT v.* FROM venue v ORDER BY v.seats DESC
SELECT * FROM show JOIN venue ON show.venue_id = venue.venue_id
SELECT title FROM show JOIN venue ON show.venue_id = venue.venue_id AND venue.seats > 200
SELECT T2.name, avg(T1.season) FROM show T1 JOIN venue T2 ON T1.venue_id = T2.venue_id GROUP BY 1 ORDER BY avg(T1.season) DESC, 1
SELECT T1.country AS land, count(*) AS n FROM artist T1 GROUP BY land ORDER BY n DESC, land
SELECT name n FROM artist ORDER BY n
SELECT name FROM venue WHERE city = 'Oslo' AND (seats > 1000 OR seats IS NULL)
SELECT name FROM artist WHERE artist_id IN (SELECT T1.artist_id FROM lineup T1 JOIN show T2 ON T1.show_id = T2.show_id WHERE T2.theme = 'Free')
SELECT name FROM artist WHERE fee = 900.0 AND age = '22'
SELECT name FROM artist WHERE age = 31.0 AND fee > -5
SELECT name FROM artist WHERE NOT (age > 30 AND country = 'Norway')
SELECT T1.name FROM venue T1 RIGHT JOIN show T2 ON T1.venue_id = T2.venue_id
SELECT upper(name) FROM artist GROUP BY upper(name)
! having | SELECT country FROM artist GROUP BY country HAVING count(*) > 1
! LIMIT | SELECT name FROM artist ORDER BY age LIMIT 1
! EXISTS | SELECT name FROM artist WHERE EXISTS (SELECT 1 FROM lineup)
! union | SELECT name FROM artist UNION SELECT name FROM venue
! natural | SELECT name FROM artist NATURAL JOIN lineup
! using | SELECT title FROM show JOIN venue USING (venue_id)
! not joined | SELECT seats FROM artist, venue
! a column of "T1" or of "T2" | SELECT venue_id FROM show T1 JOIN venue T2 ON T1.venue_id = T2.venue_id
! Unrecognized field "nothing" | SELECT nothing FROM artist
! Unrecognized field "T1.nothing" | SELECT sum(T1.nothing) FROM artist T1
! No such table nobody | SELECT name FROM nobody
! not joined | SELECT T1.name FROM artist T1 JOIN venue T2 ON T1.name = T2.name
! not joined | SELECT T1.name FROM venue T1 LEFT JOIN show T2 ON T1.venue_id = T2.venue_id AND T2.season = 2020
! can not be kept | SELECT name FROM artist WHERE age > fee
! can not be kept | SELECT country, max(age) FROM artist
! select | SELECT name, (SELECT count(*) FROM lineup) FROM artist
! Distinct | SELECT DISTINCT country FROM artist ORDER BY age
! case | SELECT name FROM artist WHERE CASE WHEN age > 3 THEN 1 ELSE 0 END = 1
! Expected a table name before "where" | SELECT name FROM where age > 3
! Expected a value at the end | SELECT name FROM artist WHERE age >
! operator | SELECT name FROM artist WHERE NOT age ORDER BY 1
! operator "artist.age like '3%'" | SELECT name FROM artist WHERE age LIKE '3%'
