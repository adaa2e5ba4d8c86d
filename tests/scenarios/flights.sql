-- Flights: two keys to one table, text keys, blanks around codes as some sources have them, airports that nobody flies to.
CREATE TABLE airlines (uid INTEGER PRIMARY KEY, Airline TEXT, Abbreviation TEXT, Country TEXT);
CREATE TABLE airports (City TEXT, AirportCode TEXT PRIMARY KEY, AirportName TEXT, Country TEXT);
CREATE TABLE flights (Airline INTEGER REFERENCES airlines (uid), FlightNo INTEGER, SourceAirport TEXT, DestAirport TEXT,
    PRIMARY KEY (Airline, FlightNo),
    FOREIGN KEY (SourceAirport) REFERENCES airports (AirportCode),
    FOREIGN KEY (DestAirport) REFERENCES airports (AirportCode));

CREATE TEMP TABLE numbers AS
    WITH RECURSIVE count (value) AS (SELECT 0 UNION ALL SELECT value + 1 FROM count WHERE value < 4000)
    SELECT value FROM count;
INSERT INTO airlines SELECT value, 'Airline ' || value, 'A' || value, CASE value % 3 WHEN 0 THEN NULL ELSE 'Country ' || (value % 3) END
    FROM numbers WHERE value BETWEEN 1 AND 12;
INSERT INTO airports SELECT 'City ' || (value % 30), printf('A%02d', value), 'Airport ' || value, 'Country ' || (value % 4)
    FROM numbers WHERE value BETWEEN 1 AND 40;
INSERT INTO airports VALUES ('Aberdeen ', 'ABR', 'Aberdeen Regional', 'Country 1'), ('Aberdeen', 'APG', 'Phillips', NULL);
INSERT INTO flights
    SELECT 1 + value % 12, value, CASE value % 19 WHEN 0 THEN 'APG' WHEN 7 THEN NULL ELSE printf('A%02d', 1 + value % 40) END,
        CASE value % 23 WHEN 0 THEN NULL WHEN 5 THEN 'APG' WHEN 6 THEN 'ABR' ELSE printf('A%02d', 1 + value * 3 % 40) END
    FROM numbers WHERE value BETWEEN 1 AND 1200;
