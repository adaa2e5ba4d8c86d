-- A wholesale trade: a table name with a blank, text keys, moments stored with fractions where only the day is meant
-- (and a few where it isn't), pictures, prices as floating numbers, truth values as text.
CREATE TABLE Categories (CategoryID INTEGER PRIMARY KEY, CategoryName TEXT, Description TEXT, Picture BLOB);
CREATE TABLE Suppliers (SupplierID INTEGER PRIMARY KEY, CompanyName TEXT NOT NULL, City TEXT, Country TEXT);
CREATE TABLE Shippers (ShipperID INTEGER PRIMARY KEY, CompanyName TEXT NOT NULL);
CREATE TABLE Customers (CustomerID TEXT PRIMARY KEY, CompanyName TEXT NOT NULL, Country TEXT);
CREATE TABLE Employees (EmployeeID INTEGER PRIMARY KEY, LastName TEXT, FirstName TEXT, BirthDate DATE,
    ReportsTo INTEGER REFERENCES Employees);
CREATE TABLE Products (ProductID INTEGER PRIMARY KEY, ProductName TEXT NOT NULL,
    SupplierID INTEGER REFERENCES Suppliers, CategoryID INTEGER REFERENCES Categories, UnitPrice REAL DEFAULT 0,
    Discontinued TEXT NOT NULL DEFAULT '0');
CREATE TABLE Orders (OrderID INTEGER PRIMARY KEY, CustomerID TEXT REFERENCES Customers,
    EmployeeID INTEGER REFERENCES Employees, OrderDate DATETIME, ShippedDate DATETIME,
    ShipVia INTEGER REFERENCES Shippers, Freight NUMERIC DEFAULT 0);
CREATE TABLE "Order Details" (OrderID INTEGER NOT NULL REFERENCES Orders, ProductID INTEGER NOT NULL REFERENCES Products,
    UnitPrice NUMERIC NOT NULL, Quantity INTEGER NOT NULL, Discount REAL NOT NULL, PRIMARY KEY (OrderID, ProductID));

CREATE TEMP TABLE numbers AS
    WITH RECURSIVE count (value) AS (SELECT 0 UNION ALL SELECT value + 1 FROM count WHERE value < 4000)
    SELECT value FROM count;
INSERT INTO Categories VALUES (1, 'Beverages', 'Drinks of all kinds', x'ffd8'), (2, 'Grains', NULL, NULL), (3, 'Cheese', '', x'00');
INSERT INTO Suppliers SELECT value, 'Supplier ' || value, 'City ' || (value % 5), CASE value % 4 WHEN 0 THEN NULL ELSE 'Country ' || (value % 4) END
    FROM numbers WHERE value BETWEEN 1 AND 12;
INSERT INTO Shippers VALUES (1, 'Fast Boats'), (2, 'Slow Trains'), (3, 'Bicycles');
INSERT INTO Customers SELECT printf('C%03d', value), 'Customer ' || value, 'Country ' || (value % 6) FROM numbers WHERE value BETWEEN 1 AND 40;
INSERT INTO Employees VALUES (1, 'Dale', 'Nancy', '1968-12-08', 2), (2, 'Full', 'Andrew', '1952-02-19', NULL),
    (3, 'Lever', 'Janet', '1963-08-30', 2), (4, 'Pea', 'Margaret', '1958-09-19', 2);
INSERT INTO Products SELECT value, 'Product ' || value, CASE WHEN value % 9 THEN 1 + value % 12 END,
    CASE WHEN value % 8 THEN 1 + value % 3 END, value * 1.1, value % 10 = 0 FROM numbers WHERE value BETWEEN 1 AND 50;
INSERT INTO Orders
    SELECT 10000 + value, printf('C%03d', 1 + value % 40), CASE WHEN value % 17 THEN 1 + value % 4 END,
        strftime('%Y-%m-%d %H:%M:%S.000', '1996-07-01', '+' || (value / 3) || ' days',
            CASE WHEN value % 5 = 0 THEN '+14 hours' ELSE '+0 hours' END),
        CASE WHEN value % 6 THEN strftime('%Y-%m-%d %H:%M:%S.000', '1996-07-05', '+' || (value / 3) || ' days') END,
        1 + value % 3, value % 50 * 1.5
    FROM numbers WHERE value BETWEEN 1 AND 800;
INSERT INTO "Order Details"
    SELECT 10001 + value / 3, 1 + value % 50, value % 50 * 1.1, 1 + value % 20, CASE WHEN value % 4 THEN 0.0 ELSE 0.05 END
    FROM numbers WHERE value BETWEEN 0 AND 2399;
