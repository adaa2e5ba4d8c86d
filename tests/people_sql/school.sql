create table department (dept_code varchar(10) primary key, dept_name varchar(40), budget numeric(10,2));
create table teacher (id integer primary key, name varchar(40), dept varchar(10) references department (dept_code), boss integer references teacher (id), salary numeric(8,2), hired date);
create table student (stu_id integer primary key, first_name varchar(30), last_name varchar(30), sex char(1), age integer, major varchar(10) references department (dept_code), advisor integer references teacher (id));
create table course (cid varchar(8) primary key, title varchar(50), credits integer not null, dept varchar(10) not null references department (dept_code));
create table takes (stu_id integer not null references student (stu_id), cid varchar(8) not null references course (cid), grade integer, primary key (stu_id, cid));
insert into department values ('CS','Computing',1000.5),('MA','Mathematics',null),('HI','History',200),('PH','Physics',700);
insert into teacher values (1,'Ada','CS',null,90,'2001-04-05'),(2,'Blaise','MA',1,70,'2010-01-01'),(3,'Clio','HI',1,null,null),(4,'Dora',null,2,55.5,'2015-07-08');
insert into student values (1,'Ann','Lee','F',20,'CS',1),(2,'Bob','Ray','M',22,'MA',2),(3,'Cat','Lee','F',null,'CS',1),(4,'Dan','Fox',null,25,null,null),(5,'Eve','Ash','F',20,'HI',3);
insert into course values ('C1','Logic',5,'CS'),('C2','Sets',5,'MA'),('C3','Rome',3,'HI'),('C4','Graphs',4,'CS');
insert into takes values (1,'C1',5),(1,'C2',4),(2,'C2',null),(3,'C1',3),(3,'C4',5),(5,'C3',2);
-- statements
SELECT avg(age) FROM student WHERE sex = "F"
SELECT first_name, last_name FROM student WHERE age > 20 AND sex = 'M'
SELECT count(*) FROM student WHERE major = 'CS'
SELECT sex, avg(age), count(*) FROM student GROUP BY sex
SELECT T1.first_name FROM student AS T1 JOIN takes AS T2 ON T1.stu_id = T2.stu_id JOIN course AS T3 ON T2.cid = T3.cid WHERE T3.title = 'Logic'
SELECT DISTINCT T1.last_name FROM student AS T1 JOIN takes AS T2 ON T1.stu_id = T2.stu_id WHERE T2.grade >= 4
SELECT title FROM course WHERE dept = 'CS' ORDER BY credits DESC
SELECT T2.dept_name, count(*) FROM course AS T1 JOIN department AS T2 ON T1.dept = T2.dept_code GROUP BY T2.dept_name
SELECT T2.dept_name, sum(T1.credits) FROM course AS T1 JOIN department AS T2 ON T1.dept = T2.dept_code GROUP BY T1.dept ORDER BY sum(T1.credits) DESC
SELECT dept_name FROM department WHERE dept_code NOT IN (SELECT dept FROM course)
SELECT T1.name, T2.name FROM teacher AS T1 JOIN teacher AS T2 ON T1.boss = T2.id
SELECT e.name FROM teacher e JOIN teacher b ON e.boss = b.id WHERE b.name = 'Ada'
SELECT name FROM teacher WHERE salary > 60 AND salary <= 90
SELECT name FROM teacher WHERE hired > '2005-01-01'
SELECT max(salary) FROM teacher WHERE dept IS NOT NULL
SELECT T1.title, avg(T2.grade) FROM course AS T1 JOIN takes AS T2 ON T1.cid = T2.cid GROUP BY T1.title
SELECT T1.stu_id, T1.first_name, count(*) FROM student AS T1 JOIN takes AS T2 ON T1.stu_id = T2.stu_id GROUP BY T1.stu_id
SELECT T1.first_name, T3.title FROM student AS T1 JOIN takes AS T2 ON T1.stu_id = T2.stu_id JOIN course AS T3 ON T3.cid = T2.cid ORDER BY T1.age
SELECT T2.name FROM student AS T1 JOIN teacher AS T2 ON T1.advisor = T2.id WHERE T1.first_name = "Ann" AND T1.last_name = "Lee"
SELECT count(*) FROM takes WHERE grade IS NULL
SELECT cid FROM takes GROUP BY cid ORDER BY count(*) DESC, cid
SELECT count(DISTINCT dept) FROM course
SELECT count(*), max(age) FROM student
SELECT major, count(*) FROM student WHERE age IS NOT NULL GROUP BY major ORDER BY 2 DESC, 1
SELECT first_name FROM student WHERE stu_id IN (SELECT stu_id FROM takes WHERE cid IN (SELECT cid FROM course WHERE dept = 'CS'))
SELECT T2.title FROM takes AS T1 JOIN course AS T2 ON T1.cid = T2.cid JOIN student AS T3 ON T1.stu_id = T3.stu_id WHERE T3.last_name = 'Lee' AND T1.grade > 3
SELECT s.first_name FROM student s WHERE s.major <> 'CS' OR s.major IS NULL
SELECT first_name || ' ' || last_name AS full_name FROM student ORDER BY full_name
SELECT T1.name FROM teacher AS T1 JOIN department AS T2 ON T1.dept = T2.dept_code JOIN student AS T3 ON T3.major = T2.dept_code
SELECT T1.title FROM course AS T1, department AS T2, teacher AS T3 WHERE T1.dept = T2.dept_code AND T3.dept = T2.dept_code AND T3.name = 'Ada'
! not joined | SELECT T1.title FROM course T1 JOIN teacher T2 ON T1.dept = T2.dept
! another use | SELECT a.title FROM course a JOIN course b ON a.dept = b.dept
! intersect | SELECT cid FROM takes INTERSECT SELECT cid FROM course
! over | SELECT name, rank() OVER (ORDER BY salary) FROM teacher
! with | WITH q AS (SELECT 1) SELECT name FROM teacher
