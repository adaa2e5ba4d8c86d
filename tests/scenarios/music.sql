-- A shop that sells music: keys that may be empty, genres whose names begin alike, two employees of one first name,
-- days stored with a time, a city with a blank behind it, a view whose columns have no declared types.
CREATE TABLE Artist (ArtistId INTEGER PRIMARY KEY, Name NVARCHAR(120));
CREATE TABLE Album (AlbumId INTEGER PRIMARY KEY, Title NVARCHAR(160) NOT NULL,
    ArtistId INTEGER NOT NULL REFERENCES Artist (ArtistId));
CREATE TABLE Genre (GenreId INTEGER PRIMARY KEY, Name NVARCHAR(120));
CREATE TABLE MediaType (MediaTypeId INTEGER PRIMARY KEY, Name NVARCHAR(120));
CREATE TABLE Track (TrackId INTEGER PRIMARY KEY, Name NVARCHAR(200) NOT NULL,
    AlbumId INTEGER REFERENCES Album (AlbumId), MediaTypeId INTEGER NOT NULL REFERENCES MediaType (MediaTypeId),
    GenreId INTEGER REFERENCES Genre (GenreId), Composer NVARCHAR(220), Milliseconds INTEGER NOT NULL,
    UnitPrice NUMERIC(10, 2) NOT NULL);
CREATE TABLE Employee (EmployeeId INTEGER PRIMARY KEY, LastName NVARCHAR(20) NOT NULL, FirstName NVARCHAR(20) NOT NULL,
    Title NVARCHAR(30), ReportsTo INTEGER REFERENCES Employee (EmployeeId), HireDate DATETIME);
CREATE TABLE Customer (CustomerId INTEGER PRIMARY KEY, FirstName NVARCHAR(40) NOT NULL, LastName NVARCHAR(20) NOT NULL,
    Company NVARCHAR(80), Country NVARCHAR(40), SupportRepId INTEGER REFERENCES Employee (EmployeeId));
CREATE TABLE Invoice (InvoiceId INTEGER PRIMARY KEY,
    CustomerId INTEGER NOT NULL REFERENCES Customer (CustomerId), InvoiceDate DATETIME NOT NULL,
    BillingCity NVARCHAR(40), Total NUMERIC(10, 2) NOT NULL);
CREATE TABLE InvoiceLine (InvoiceLineId INTEGER PRIMARY KEY,
    InvoiceId INTEGER NOT NULL REFERENCES Invoice (InvoiceId), TrackId INTEGER NOT NULL REFERENCES Track (TrackId),
    UnitPrice NUMERIC(10, 2) NOT NULL, Quantity INTEGER NOT NULL);
CREATE VIEW TrackMinutes AS SELECT t.Name AS Track, t.Milliseconds / 60000.0 AS Minutes, a.Title AS Album
    FROM Track t LEFT JOIN Album a ON a.AlbumId = t.AlbumId;

CREATE TEMP TABLE numbers AS
    WITH RECURSIVE count (value) AS (SELECT 0 UNION ALL SELECT value + 1 FROM count WHERE value < 4000)
    SELECT value FROM count;
INSERT INTO Genre VALUES (1, 'Rock'), (2, 'Jazz'), (3, 'Rock and Roll'), (4, 'Kids'' songs'), (5, '100% Folk'), (6, NULL);
INSERT INTO MediaType VALUES (1, 'Record'), (2, 'File'), (3, 'Cassette');
INSERT INTO Artist SELECT value, 'Artist ' || value FROM numbers WHERE value BETWEEN 1 AND 60;
INSERT INTO Album SELECT value, 'Album no. ' || value, 1 + value * 7 % 60 FROM numbers WHERE value BETWEEN 1 AND 150;
INSERT INTO Track
    SELECT value, CASE value % 5 WHEN 0 THEN 'Song_' || value WHEN 1 THEN '100% ' || value ELSE 'Tune ' || value END,
        CASE WHEN value % 11 THEN 1 + value % 150 END, 1 + value % 3, CASE WHEN value % 13 THEN 1 + value % 6 END,
        CASE WHEN value % 4 THEN 'Composer ' || (value % 40) END, 60000 + value * 7919 % 540000, 0.99 + value % 3
    FROM numbers WHERE value BETWEEN 1 AND 2000;
INSERT INTO Employee VALUES (1, 'Adams', 'Ann', 'General manager', NULL, '2002-08-14 00:00:00'),
    (2, 'Brook', 'Nora', 'Sales manager', 1, '2002-05-01 00:00:00'),
    (3, 'Peach', 'Jane', 'Support', 2, '2002-04-01 00:00:00'), (4, 'Park', 'Mary', 'Support', 2, '2003-05-03 00:00:00'),
    (5, 'Stone', 'Jane', 'Support', 1, '2003-10-17 00:00:00');
INSERT INTO Customer
    SELECT value, 'First' || value, 'Last' || value,
        CASE value % 6 WHEN 0 THEN 'Company ' || value WHEN 3 THEN '' END,
        CASE value % 7 WHEN 0 THEN NULL WHEN 1 THEN 'Norway' WHEN 2 THEN 'Brazil' WHEN 3 THEN 'Canada' ELSE 'Chile' END,
        CASE WHEN value % 10 THEN 3 + value % 3 END
    FROM numbers WHERE value BETWEEN 1 AND 120;
INSERT INTO Invoice
    SELECT value, 1 + value * 13 % 120, date('2019-01-01', '+' || (value * 3 % 1800) || ' days') || ' 00:00:00',
        CASE value % 9 WHEN 0 THEN 'Oslo' WHEN 1 THEN 'Oslo ' WHEN 2 THEN 'Rio' WHEN 3 THEN 'Paris' WHEN 4 THEN 'L''Aquila'
            WHEN 5 THEN 'Prague' WHEN 6 THEN 'Berlin' WHEN 7 THEN NULL ELSE 'Lund' END,
        (value % 40) * 0.99
    FROM numbers WHERE value BETWEEN 1 AND 900;
INSERT INTO InvoiceLine
    SELECT value, 1 + value % 900, 1 + value * 17 % 2000, 0.99, 1 + value % 2 FROM numbers WHERE value BETWEEN 1 AND 4000;
