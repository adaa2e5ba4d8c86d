#!/usr/bin/env python3
"""Makes the sample database: a shop for tents, tools and walking boots that
keeps its customers, orders, payments and shipments in an SQLite file.

    python3 make_orders_db.py OUT.sqlite

Everything comes from one fixed seed, so every run writes the same data. The
file is made beside the target and moved over it when it is complete.
"""

import datetime
import os
import random
import sqlite3
import sys

SEED = 20240226
FIRST_DAY = datetime.date(2021, 1, 1)
LAST_DAY = datetime.date(2024, 12, 31)
ORDERS_PER_YEAR = {2021: 170, 2022: 215, 2023: 245, 2024: 300}
MONTH_WEIGHT = {1: 4, 2: 5, 3: 6, 4: 8, 5: 10, 6: 10,
                7: 8, 8: 6, 9: 5, 10: 5, 11: 8, 12: 10}
FIRST_ORDER_ID = 1001

SCHEMA = """
CREATE TABLE countries (
  country_id INTEGER PRIMARY KEY,
  name VARCHAR(40) NOT NULL UNIQUE,
  iso_code VARCHAR(2) NOT NULL UNIQUE,
  continent VARCHAR(20) NOT NULL,
  in_eu BOOLEAN NOT NULL
);
CREATE TABLE customers (
  customer_id INTEGER PRIMARY KEY,
  company VARCHAR(60),
  first_name VARCHAR(30) NOT NULL,
  last_name VARCHAR(40) NOT NULL,
  email VARCHAR(80),
  phone VARCHAR(20),
  street VARCHAR(60) NOT NULL,
  postal_code VARCHAR(10) NOT NULL,
  city VARCHAR(40) NOT NULL,
  country_id INTEGER NOT NULL REFERENCES countries (country_id),
  customer_since DATE NOT NULL,
  newsletter BOOLEAN NOT NULL,
  credit_limit DECIMAL(10,2),
  notes TEXT
);
CREATE TABLE employees (
  employee_id INTEGER PRIMARY KEY,
  first_name VARCHAR(30) NOT NULL,
  last_name VARCHAR(40) NOT NULL,
  title VARCHAR(40) NOT NULL,
  boss_id INTEGER REFERENCES employees (employee_id),
  born DATE NOT NULL,
  hired DATE NOT NULL,
  salary DECIMAL(10,2) NOT NULL,
  shift_start TIME NOT NULL,
  phone VARCHAR(20),
  active BOOLEAN NOT NULL
);
CREATE TABLE suppliers (
  supplier_id INTEGER PRIMARY KEY,
  name VARCHAR(60) NOT NULL,
  city VARCHAR(40) NOT NULL,
  country_id INTEGER NOT NULL REFERENCES countries (country_id),
  phone VARCHAR(20),
  rating SMALLINT
);
CREATE TABLE categories (
  category_id INTEGER PRIMARY KEY,
  name VARCHAR(30) NOT NULL UNIQUE,
  description TEXT
);
CREATE TABLE products (
  product_id INTEGER PRIMARY KEY,
  name VARCHAR(60) NOT NULL,
  category_id INTEGER NOT NULL REFERENCES categories (category_id),
  supplier_id INTEGER NOT NULL REFERENCES suppliers (supplier_id),
  list_price DECIMAL(10,2) NOT NULL,
  in_stock INTEGER NOT NULL,
  weight_kg REAL,
  introduced DATE NOT NULL,
  discontinued BOOLEAN NOT NULL
);
CREATE TABLE shippers (
  shipper_id INTEGER PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  phone VARCHAR(20),
  last_pickup TIME NOT NULL
);
CREATE TABLE orders (
  order_id INTEGER PRIMARY KEY,
  customer_id INTEGER NOT NULL REFERENCES customers (customer_id),
  employee_id INTEGER NOT NULL REFERENCES employees (employee_id),
  order_date DATE NOT NULL,
  entered_at TIMESTAMP NOT NULL,
  required_date DATE,
  status VARCHAR(12) NOT NULL,
  channel VARCHAR(10) NOT NULL,
  freight DECIMAL(10,2) NOT NULL,
  total DECIMAL(10,2) NOT NULL,
  comment TEXT
);
CREATE TABLE "Order Lines" (
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  line_no INTEGER NOT NULL,
  product_id INTEGER NOT NULL REFERENCES products (product_id),
  quantity INTEGER NOT NULL,
  unit_price DECIMAL(10,2) NOT NULL,
  discount REAL NOT NULL,
  "Gift Text" VARCHAR(60),
  PRIMARY KEY (order_id, line_no)
);
CREATE TABLE payments (
  payment_id INTEGER PRIMARY KEY,
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  paid_on DATE NOT NULL,
  method VARCHAR(12) NOT NULL,
  amount DECIMAL(10,2) NOT NULL,
  reference VARCHAR(20)
);
CREATE TABLE shipments (
  shipment_id INTEGER PRIMARY KEY,
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  shipper_id INTEGER NOT NULL REFERENCES shippers (shipper_id),
  packed_on DATE NOT NULL,
  shipped_at TIMESTAMP,
  tracking VARCHAR(20),
  weight_kg REAL
);
CREATE TABLE returns (
  return_id INTEGER PRIMARY KEY,
  order_id INTEGER NOT NULL,
  line_no INTEGER NOT NULL,
  "when" DATE NOT NULL,
  quantity INTEGER NOT NULL,
  reason VARCHAR(30) NOT NULL,
  refunded BOOLEAN NOT NULL,
  FOREIGN KEY (order_id, line_no) REFERENCES "Order Lines" (order_id, line_no)
);
CREATE INDEX customers_country ON customers (country_id);
CREATE INDEX orders_customer ON orders (customer_id);
CREATE INDEX orders_employee ON orders (employee_id);
CREATE INDEX lines_product ON "Order Lines" (product_id);
CREATE INDEX payments_order ON payments (order_id);
CREATE INDEX shipments_order ON shipments (order_id);
CREATE INDEX returns_line ON returns (order_id, line_no);
"""


class Country:
    """A country, and what its people, firms, streets and numbers look like."""

    def __init__(self, name, iso, continent, in_eu, customers=0, dial="",
                 post="", streets=(), firms=(), cities=(), given=(), family=()):
        self.name = name
        self.iso = iso
        self.continent = continent
        self.in_eu = in_eu
        self.customers = customers
        self.dial = dial
        self.post = post
        self.streets = streets
        self.firms = firms
        self.cities = cities
        self.given = given
        self.family = family


ENGLISH_GIVEN = ("Alice", "Aoife", "Brendan", "Catherine", "Declan", "Eleanor",
                 "Fergus", "George", "Hannah", "Isaac", "Joan", "Liam",
                 "Maeve", "Niall", "Olive", "Patrick", "Róisín", "Siobhán",
                 "Tom", "Winifred")

COUNTRIES = (
    Country("Norway", "NO", "Europe", 0, 36, "+47", "dddd",
            ("Storgata", "Kirkeveien", "Fjellveien", "Strandgata", "Skoleveien"),
            ("Friluft AS", "Sport AS", "Hagesenter AS"),
            ("Oslo", "Bergen", "Trondheim", "Stavanger", "Tromsø", "Bodø", "Ålesund"),
            ("Ingrid", "Bjørn", "Astrid", "Håkon", "Solveig", "Øyvind", "Kari",
             "Torstein", "Ragnhild", "Per", "Marte", "Sindre"),
            ("Dahl", "Bakke", "Solberg", "Haugen", "Lie", "Nygård", "Strand",
             "Øverland", "Moen", "Berge", "Fjeld", "Rønning")),
    Country("Sweden", "SE", "Europe", 1, 32, "+46", "ddd dd",
            ("Storgatan", "Kungsgatan", "Skolgatan", "Björkvägen", "Hamngatan"),
            ("Fritid AB", "Vildmark AB", "Trädgård AB"),
            ("Stockholm", "Göteborg", "Malmö", "Uppsala", "Umeå", "Örebro", "Luleå"),
            ("Astrid", "Björn", "Elin", "Gustav", "Karin", "Lars", "Åsa",
             "Oskar", "Sigrid", "Nils", "Märta", "Anton"),
            ("Lindqvist", "Åkesson", "Bergström", "Sjöberg", "Holm", "Nyström",
             "Ek", "Hedlund", "Söderlund", "Wallin", "Björk", "Sandell")),
    Country("Denmark", "DK", "Europe", 1, 22, "+45", "dddd",
            ("Algade", "Søndergade", "Møllevej", "Skovvej", "Havnegade"),
            ("Friluftsliv ApS", "Haveland ApS"),
            ("København", "Aarhus", "Odense", "Aalborg", "Esbjerg", "Roskilde"),
            ("Mette", "Søren", "Kirsten", "Jens", "Bodil", "Rasmus", "Birgitte",
             "Anders", "Lærke", "Troels"),
            ("Kjær", "Mortensen", "Skov", "Bruun", "Østergaard", "Lund",
             "Krogh", "Damgaard", "Winther", "Toft")),
    Country("Finland", "FI", "Europe", 1, 14, "+358", "ddddd",
            ("Mannertie", "Koivukuja", "Rantakatu", "Asematie"),
            ("Retki Oy", "Puutarha Oy"),
            ("Helsinki", "Tampere", "Turku", "Oulu", "Jyväskylä"),
            ("Aino", "Eero", "Helmi", "Jukka", "Kaisa", "Mikko", "Päivi", "Väinö"),
            ("Mäkinen", "Lahti", "Salo", "Hämäläinen", "Koski", "Niemi",
             "Rantala", "Ylönen")),
    Country("Iceland", "IS", "Europe", 0, 9, "+354", "ddd",
            ("Laugavegur", "Hafnargata", "Skólavegur"),
            ("Útivist ehf.",),
            ("Reykjavík", "Akureyri", "Ísafjörður"),
            ("Guðrún", "Jón", "Þóra", "Einar", "Sigríður", "Ólafur"),
            ("Blöndal", "Hafstein", "Thorlacius", "Briem", "Zoëga")),
    Country("Germany", "DE", "Europe", 1, 30, "+49", "ddddd",
            ("Hauptstraße", "Gartenweg", "Bahnhofstraße", "Lindenallee", "Mühlweg"),
            ("Wanderladen KG", "Gartenbau GmbH", "Bergsport GmbH"),
            ("Hamburg", "Berlin", "München", "Köln", "Leipzig", "Freiburg", "Münster"),
            ("Anke", "Jürgen", "Katharina", "Matthias", "Sabine", "Uwe", "Greta",
             "Jörg", "Friederike", "Tobias"),
            ("Krüger", "Vogel", "Schäfer", "Brandt", "Lorenz", "Böhm", "Winter",
             "Groß", "Ebert", "Seidel", "Köhler")),
    Country("Netherlands", "NL", "Europe", 1, 18, "+31", "dddd AA",
            ("Dorpsstraat", "Molenweg", "Kerkstraat", "Havenkade"),
            ("Buitensport BV", "Tuinhuis BV"),
            ("Amsterdam", "Utrecht", "Groningen", "Eindhoven", "Nijmegen"),
            ("Anneke", "Bram", "Femke", "Joost", "Lotte", "Ruben", "Sanne", "Wouter"),
            ("de Boer", "van Dijk", "Visser", "Bakker", "Kuipers", "Hoekstra",
             "van der Meer", "Smit")),
    Country("France", "FR", "Europe", 1, 18, "+33", "ddddd",
            ("rue de la Gare", "rue des Lilas", "avenue du Parc", "chemin Vert"),
            ("Plein Air SARL", "Jardins SARL"),
            ("Lyon", "Grenoble", "Nantes", "Besançon", "Orléans", "Annecy"),
            ("Amélie", "Benoît", "Céline", "François", "Hélène", "Luc", "Margaux",
             "Rémi"),
            ("Lefèvre", "Girard", "Moreau", "Chevalier", "Barbier", "D'Aubigny",
             "Rousselle", "Besson")),
    Country("Spain", "ES", "Europe", 1, 14, "+34", "ddddd",
            ("calle Mayor", "calle del Río", "paseo del Prado Nuevo"),
            ("Montaña SL", "Jardín SL"),
            ("Bilbao", "Zaragoza", "Granada", "León", "Logroño"),
            ("Begoña", "Íñigo", "José", "Lucía", "Nuria", "Óscar", "Pilar", "Xabier"),
            ("Ibáñez", "Núñez", "Ortega", "Peña", "Serrano", "Vidal", "Zubiri")),
    Country("Portugal", "PT", "Europe", 1, 8, "+351", "dddd-ddd",
            ("rua do Porto", "rua das Flores", "travessa Nova"),
            ("Ar Livre Lda",),
            ("Porto", "Coimbra", "Évora"),
            ("Inês", "João", "Luísa", "Tomás", "Rita", "Nuno"),
            ("Araújo", "Falcão", "Magalhães", "Pinto", "Simões")),
    Country("Italy", "IT", "Europe", 1, 14, "+39", "ddddd",
            ("via Roma", "via dei Mille", "viale Europa", "via del Lago"),
            ("Montagna Srl", "Giardini Srl"),
            ("Torino", "Bologna", "Trento", "Bergamo", "Forlì"),
            ("Chiara", "Davide", "Elisa", "Fabio", "Giulia", "Niccolò", "Silvia"),
            ("D'Angelo", "Conti", "Ferri", "Galli", "Marchetti", "Rinaldi", "Testa")),
    Country("Poland", "PL", "Europe", 1, 12, "+48", "dd-ddd",
            ("ulica Polna", "ulica Leśna", "ulica Długa"),
            ("Turystyka Sp. z o.o.", "Ogród Sp. z o.o."),
            ("Kraków", "Gdańsk", "Łódź", "Wrocław", "Zakopane"),
            ("Agnieszka", "Łukasz", "Małgorzata", "Paweł", "Zofia", "Stanisław"),
            ("Kaczmarek", "Wróbel", "Król", "Leśniak", "Mróz", "Żurek")),
    Country("Ireland", "IE", "Europe", 1, 14, "+353", "Add AAdd",
            ("Main Street", "Church Lane", "Quay Road", "Mill Hill"),
            ("Outdoors Ltd", "Garden Centre Ltd"),
            ("Dublin", "Cork", "Galway", "Sligo", "Killarney"),
            ENGLISH_GIVEN,
            ("O'Hara", "O'Brien", "Keane", "Walsh", "O'Sullivan", "Doyle",
             "McGrath", "Lally")),
    Country("United Kingdom", "GB", "Europe", 0, 22, "+44", "AAd dAA",
            ("High Street", "Station Road", "Church Lane", "Meadow Way"),
            ("Outdoors Ltd", "Garden Centre Ltd", "Walking Co. Ltd"),
            ("Edinburgh", "Leeds", "Bristol", "Cardiff", "Keswick", "Sheffield"),
            ENGLISH_GIVEN,
            ("Ashworth", "Barlow", "Campbell", "Fairbairn", "Hughes", "Linley",
             "O'Neill", "Pritchard", "Thwaite", "Wren")),
    Country("Canada", "CA", "North America", 0, 10, "+1", "AdA dAd",
            ("Maple Avenue", "Lakeshore Drive", "rue Principale"),
            ("Outfitters Inc.",),
            ("Vancouver", "Calgary", "Québec", "Halifax"),
            ENGLISH_GIVEN,
            ("Bouchard", "Fraser", "MacKay", "O'Hara", "Tremblay", "Whitfield")),
    Country("Estonia", "EE", "Europe", 1),
    Country("Czechia", "CZ", "Europe", 1),
    Country("Austria", "AT", "Europe", 1),
    Country("Japan", "JP", "Asia", 0),
)

# name, city, country, rating (None: not rated yet)
SUPPLIERS = (
    ("Fjellvev AS", "Ålesund", "Norway", 5),
    ("Norrskog Redskap AB", "Umeå", "Sweden", 4),
    ("Kystlys ApS", "Esbjerg", "Denmark", 3),
    ("Talvi Tekstiili Oy", "Tampere", "Finland", 4),
    ("Kessler & Sohn Werkzeuge GmbH", "Leipzig", "Germany", 5),
    ("Polder Tenten BV", "Groningen", "Netherlands", 3),
    ("Ateliers du Col SARL", "Grenoble", "France", 4),
    ("Calzados Sierra Alta SL", "Logroño", "Spain", 4),
    ("Cucina da Campo Srl", "Trento", "Italy", None),
    ("Jižní Batohy s.r.o.", "Brno", "Czechia", 4),
    ("Alpenfilz OG", "Innsbruck", "Austria", 5),
    ("Saare Puit OÜ", "Kuressaare", "Estonia", 3),
    ("Hikari Lamps K.K.", "Osaka", "Japan", None),
    ("O'Malley Maps Ltd", "Galway", "Ireland", 5),
)

# category, description, then its products: name, price, weight in kg (None:
# not weighed), supplier, introduced, discontinued
CATALOGUE = (
    ("Tents", "Tents, tarps and what holds them up", (
        ("Skarv 2 tent", 289.00, 2.4, 0, "2019-03-01", 0),
        ("Skarv 3 tent", 349.00, 3.1, 0, "2019-03-01", 0),
        ("Lomvi tunnel tent", 529.00, 3.9, 0, "2020-02-15", 0),
        ("Myr family tent", 619.00, 9.8, 5, "2018-04-01", 0),
        ("Dune beach tent", 74.50, 1.6, 0, "2021-05-10", 1),
        ("Tarp 3 x 4 m", 89.90, 0.9, 5, "2019-06-01", 0),
        ("Tent pegs, set of 12", 14.90, 0.3, 4, "2018-01-15", 0),
        ("Groundsheet 2 x 3 m", 29.90, 0.7, 5, "2020-03-20", 0))),
    ("Sleeping", "Sleeping bags, mats and pillows", (
        ("Ugle sleeping bag, summer", 119.00, 0.9, 3, "2019-02-01", 0),
        ("Ugle sleeping bag, winter", 259.00, 1.7, 3, "2019-02-01", 0),
        ("Hare sleeping bag for children", 69.90, 0.8, 3, "2020-05-05", 0),
        ("Air mat, long", 94.50, 0.6, 9, "2020-04-15", 0),
        ("Foam mat", 24.90, 0.4, 9, "2018-01-15", 0),
        ("Wool pillow", 34.90, 0.3, 10, "2021-09-01", 0))),
    ("Backpacks", "Day packs and trekking packs", (
        ("Rein 65 trekking pack", 219.00, 2.1, 9, "2019-03-10", 0),
        ("Rein 45 trekking pack", 179.00, 1.7, 9, "2019-03-10", 0),
        ("Orrhane day pack 22 l", 84.90, 0.8, 9, "2020-08-01", 0),
        ("Child carrier", 239.00, 2.9, 9, "2022-03-01", 0),
        ("Rain cover", 17.50, 0.1, 9, "2018-06-01", 0),
        ("Canvas rucksack", 129.00, 1.5, 6, "2018-02-01", 1))),
    ("Cooking", "Stoves, pots and things to eat with", (
        ("Glo gas stove", 54.90, 0.4, 8, "2019-04-01", 0),
        ("Glo petrol stove", 139.00, 0.7, 8, "2019-04-01", 0),
        ("Pot set, 3 pieces", 64.90, 0.9, 8, "2020-01-20", 0),
        ("Enamel mug", 9.90, 0.2, 11, "2018-01-15", 0),
        ("Birch spoon", 6.50, None, 11, "2018-01-15", 0),
        ("Water filter", 79.00, 0.3, 12, "2021-04-12", 0),
        ("Cool box 30 l", 99.00, 4.2, 5, "2022-05-02", 0))),
    ("Lighting", "Head torches and lanterns", (
        ("Nova head torch 300", 39.90, 0.1, 12, "2020-10-01", 0),
        ("Nova head torch 700", 69.90, 0.2, 12, "2021-10-01", 0),
        ("Storm lantern", 27.50, 0.9, 2, "2018-01-15", 0),
        ("Solar lantern", 44.90, 0.3, 12, "2022-04-01", 0),
        ("Spare battery, pair", 12.90, 0.1, 12, "2019-01-10", 0))),
    ("Clothing", "For rain, wind and cold", (
        ("Regn jacket", 149.00, 0.5, 3, "2019-08-01", 0),
        ("Regn trousers", 99.00, 0.4, 3, "2019-08-01", 0),
        ("Wool jersey", 109.00, 0.6, 10, "2018-09-01", 0),
        ("Felt hat", 49.90, 0.2, 10, "2020-09-15", 0),
        ("Wool socks, 2 pairs", 24.50, 0.2, 10, "2018-09-01", 0),
        ("Down vest", 169.00, 0.4, 6, "2021-09-01", 0),
        ("Fishing waistcoat", 79.90, 0.5, 6, "2018-05-01", 1))),
    ("Footwear", "Boots, shoes and their care", (
        ("Gaupe walking boots", 189.00, 1.3, 7, "2019-03-15", 0),
        ("Gaupe winter boots", 229.00, 1.6, 7, "2020-09-01", 0),
        ("Trail shoes", 119.00, 0.8, 7, "2021-03-01", 0),
        ("Camp sandals", 39.90, 0.5, 7, "2020-04-01", 0),
        ("Boot wax", 8.90, 0.1, 10, "2018-01-15", 0),
        ("Gaiters", 44.50, 0.3, 6, "2019-10-01", 0))),
    ("Maps and books", "Walking maps, guides and notebooks", (
        ("Map of the western fells", 16.90, 0.1, 13, "2020-03-01", 0),
        ("Map of the northern coast", 16.90, 0.1, 13, "2021-03-01", 0),
        ("Hut to hut: a guide", 29.50, 0.5, 13, "2022-02-01", 0),
        ("Walker's notebook", 11.50, 0.2, 13, "2019-11-01", 0),
        ("Birds of the shore", 34.00, 0.7, 13, "2018-10-01", 1))),
    ("Garden tools", "Tools that last", (
        ("Spade, ash handle", 58.00, 2.2, 4, "2018-02-01", 0),
        ("Digging fork", 62.00, 2.3, 4, "2018-02-01", 0),
        ("Pruning saw", 36.50, 0.4, 1, "2019-02-15", 0),
        ("Garden shears", 47.00, 0.9, 1, "2019-02-15", 0),
        ("Forest axe", 98.00, 1.4, 1, "2018-10-10", 0),
        ("Watering can 9 l", 32.00, 1.1, 2, "2020-03-15", 0),
        ("Wheelbarrow", 149.00, 13.5, 1, "2021-02-20", 0),
        ("Work gloves", 15.90, 0.2, 4, "2018-02-01", 0))),
    ("Garden furniture", None, (
        ("Folding chair", 69.00, 3.4, 11, "2019-04-20", 0),
        ("Garden table, larch", 389.00, 24.0, 11, "2020-04-20", 0),
        ("Garden bench, larch", 319.00, 19.0, 11, "2020-04-20", 0),
        ("Hammock", 84.00, 1.4, 5, "2021-05-01", 0),
        ("Fire bowl 60 cm", 159.00, 11.0, 4, "2022-04-10", 0))),
)

# first name, family name, title, boss, born, hired, salary, shift, phone, active
EMPLOYEES = (
    ("Ragnhild", "Øverby", "Managing director", None, "1966-05-14", "2010-01-04",
     98000, "08:00:00", "+47 2200 0101", 1),
    ("Thomas", "Skoglund", "Head of sales", 0, "1974-11-02", "2012-03-01",
     72000, "08:00:00", "+47 2200 0102", 1),
    ("Marianne", "Vik", "Head of warehouse", 0, "1971-07-23", "2011-08-15",
     66500, "06:30:00", "+47 2200 0103", 1),
    ("Henrik", "Aas", "Head of accounts", 0, "1979-02-09", "2014-05-05",
     69500, "08:30:00", "+47 2200 0104", 1),
    ("Silje", "Nordmo", "Sales, web shop", 1, "1988-09-30", "2016-09-01",
     47200, "09:00:00", "+47 2200 0111", 1),
    ("Conor", "O'Hara", "Sales, British Isles", 1, "1985-03-17", "2017-02-13",
     49800, "09:00:00", "+353 1 555 0112", 1),
    ("Jonas", "Lindgren", "Sales, Nordic countries", 1, "1990-12-05", "2018-06-04",
     46400, "08:00:00", "+47 2200 0113", 1),
    ("Beatriz", "Muñoz", "Sales, southern Europe", 1, "1987-06-21", "2019-10-01",
     47900, "09:30:00", None, 1),
    ("Klaus", "Reinhardt", "Sales, central Europe", 1, "1969-01-28", "2013-04-15",
     52300, "08:00:00", "+47 2200 0115", 0),
    ("Eva", "Zelenka", "Sales, central Europe", 1, "1993-08-11", "2022-11-01",
     44100, "08:00:00", "+47 2200 0116", 1),
    ("Amund", "Bråten", "Shop assistant", 4, "1999-04-03", "2021-06-14",
     36800, "10:00:00", None, 1),
    ("Leila", "Hashemi", "Shop assistant", 4, "1997-10-19", "2023-03-06",
     36200, "12:00:00", "+47 2200 0118", 1),
    ("Geir", "Tangen", "Packer", 2, "1976-12-12", "2015-01-12",
     38900, "06:30:00", None, 1),
    ("Nadia", "Wójcik", "Packer", 2, "1991-05-27", "2020-08-17",
     37400, "14:00:00", "+47 2200 0120", 1),
    ("Ola", "Fossum", "Bookkeeper", 3, "1983-09-08", "2018-01-08",
     45600, "08:30:00", "+47 2200 0121", 1),
)
SALES_STAFF = (4, 5, 6, 7, 8, 9, 10, 11)
CLERK_LEFT = {8: datetime.date(2022, 12, 31)}
HOME_CLERKS = {"Norway": (4, 6), "Sweden": (6,), "Denmark": (6,), "Finland": (6,),
               "Iceland": (6,), "Ireland": (5,), "United Kingdom": (5,),
               "Canada": (5,), "France": (7,), "Spain": (7,), "Portugal": (7,),
               "Italy": (7,), "Germany": (8, 9), "Netherlands": (8, 9),
               "Poland": (8, 9)}

SHIPPERS = (
    ("Fjordpost", "+47 2200 0900", "17:30:00"),
    ("Blue Heron Parcels", "+44 20 5550 0901", "18:00:00"),
    ("Landkurier", "+49 40 555 0902", "16:00:00"),
    ("Nightline Freight", None, "21:15:00"),
)

GIFT_TEXTS = ("Happy birthday!", "From all of us at work", "With love from Mum",
              "Good luck on the long walk", "Gratulerer med dagen!",
              "For Aunt Maeve, from the O'Haras", "Für den Garten",
              "Thank you", "Joyeux Noël")
ORDER_COMMENTS = ("Leave it at the back door", "Call before delivery",
                  "It's a gift: no price tags, please", "Send the bill by post",
                  "Same colour as last year", "Deliver after 16:00",
                  "Two parcels are fine", "Dog in the yard")
CUSTOMER_NOTES = ("Pays on time", "Asks for a catalogue every spring",
                  "Prefers to be called in the morning", "Wants paper bills",
                  "Club member, 5 percent off", "Moved in 2022: check the address",
                  "Doesn't take parcels on Fridays")
RETURN_REASONS = ("wrong size", "damaged", "changed mind", "not as described",
                  "arrived late")

PLAIN_LETTERS = str.maketrans({
    "æ": "ae", "ø": "o", "å": "a", "ä": "a", "ö": "o", "ü": "u", "ß": "ss",
    "é": "e", "è": "e", "ê": "e", "í": "i", "ë": "e", "ó": "o", "ò": "o", "õ": "o", "ú": "u",
    "á": "a", "ã": "a", "ç": "c", "ñ": "n", "ð": "d", "þ": "th", "î": "i",
    "ł": "l", "ń": "n", "ś": "s", "ż": "z", "ź": "z", "ą": "a", "ć": "c",
    "ô": "o", "'": "", " ": "", ".": "", "&": ""})


class Dice:
    """Random choices made from random() alone, which stays the same from one
    Python version to the next."""

    def __init__(self, seed):
        self._random = random.Random(seed)

    def chance(self, probability):
        return self._random.random() < probability

    def between(self, low, high):
        return low + int(self._random.random() * (high - low + 1))

    def pick(self, items):
        return items[self.between(0, len(items) - 1)]

    def pick_weighted(self, items, weights):
        rest = self._random.random() * sum(weights)
        for item, weight in zip(items, weights):
            rest -= weight
            if rest < 0:
                return item
        return items[-1]

    def pick_some(self, items, count):
        left = list(items)
        return [left.pop(self.between(0, len(left) - 1)) for _ in range(count)]

    def day(self, first, last):
        return first + datetime.timedelta(self.between(0, (last - first).days))


def plain(text):
    return text.lower().translate(PLAIN_LETTERS)


def clock(dice, first_hour, last_hour):
    return "%02d:%02d:%02d" % (dice.between(first_hour, last_hour),
                               dice.between(0, 59), dice.between(0, 59))


def filled(dice, pattern):
    """A postal code: d stands for a digit, A for a letter."""
    text = ""
    for sign in pattern:
        if sign == "d":
            text += str(dice.between(0 if text else 1, 9))
        elif sign == "A":
            text += dice.pick("ABCDEFGHJKLMNPRSTUVWXYZ")
        else:
            text += sign
    return text


def money(value):
    return round(value + 1e-9, 2)


def make_customers(dice):
    rows = []
    firms = set()
    for country_id, country in enumerate(COUNTRIES, 1):
        for _ in range(country.customers):
            given = dice.pick(country.given)
            family = dice.pick(country.family)
            is_firm = dice.chance(0.28)
            company = None
            if is_firm:
                for _ in range(20):
                    company = "%s %s" % (dice.pick(country.family), dice.pick(country.firms))
                    if company not in firms:
                        break
                firms.add(company)
                email = "office@%s.example" % plain(company.rsplit(" ", 1)[0])
            else:
                email = "%s.%s@mail.example" % (plain(given), plain(family))
            since = dice.day(datetime.date(2018, 1, 1), datetime.date(2024, 9, 30))
            if dice.chance(0.45):
                since = dice.day(datetime.date(2018, 1, 1), datetime.date(2020, 12, 31))
            number = dice.between(1, 140)
            street = dice.pick(country.streets)
            if country.iso in ("IE", "GB", "CA", "FR"):
                street = "%d %s" % (number, street)
            else:
                street = "%s %d" % (street, number)
            phone = None
            if dice.chance(0.86):
                phone = "%s %03d %04d" % (country.dial, dice.between(200, 899),
                                          dice.between(0, 9999))
            limit = dice.pick((1000, 2000, 2500, 5000, 7500, 10000)) if is_firm else None
            rows.append([company, given, family, email if dice.chance(0.92) else None,
                         phone, street, filled(dice, country.post),
                         dice.pick(country.cities), country_id, since,
                         int(dice.chance(0.55)), limit,
                         dice.pick(CUSTOMER_NOTES) if dice.chance(0.15) else None])
    # Numbered in the order in which they became customers.
    rows.sort(key=lambda row: (row[9], row[8], row[2], row[1], row[5]))
    emails = set()
    for customer_id, row in enumerate(rows, 1):
        if row[3] is not None and row[3] in emails:
            row[3] = row[3].replace("@", "%d@" % customer_id)
        emails.add(row[3])
    return [[customer_id] + row for customer_id, row in enumerate(rows, 1)]


def make_products(dice):
    rows = []
    for category_id, (_, _, products) in enumerate(CATALOGUE, 1):
        for name, price, weight, supplier, introduced, discontinued in products:
            stock = 0 if discontinued or dice.chance(0.06) else dice.between(3, 140)
            rows.append((len(rows) + 1, name, category_id, supplier + 1, price, stock,
                         weight, introduced, discontinued))
    return rows


def make_order_dates(dice):
    days = []
    for year, count in ORDERS_PER_YEAR.items():
        for _ in range(count):
            month = dice.pick_weighted(tuple(MONTH_WEIGHT), tuple(MONTH_WEIGHT.values()))
            first = datetime.date(year, month, 1)
            last = datetime.date(year + month // 12, month % 12 + 1, 1) - datetime.timedelta(1)
            day = dice.day(first, last)
            if day.weekday() == 6:
                day -= datetime.timedelta(1)
            days.append(max(day, FIRST_DAY))
    return sorted(days)


def pick_clerk(dice, country, channel, day):
    def there(clerk):
        return (datetime.date.fromisoformat(EMPLOYEES[clerk][5]) <= day
                and day <= CLERK_LEFT.get(clerk, LAST_DAY))
    wanted = HOME_CLERKS[country]
    if channel == "shop":
        wanted = (10, 11)
    elif channel == "web" and dice.chance(0.4):
        wanted = (4,)
    choice = [clerk for clerk in wanted if there(clerk)]
    return dice.pick(choice or [clerk for clerk in SALES_STAFF if there(clerk)]) + 1


def pick_status(dice, age):
    if dice.chance(0.08):
        return "cancelled"
    if age < 5:
        return "new"
    if age < 13:
        return "packed" if dice.chance(0.8) else "new"
    if age < 22:
        return "shipped"
    return "delivered"


def make_lines(dice, order_id, day, is_firm, products):
    on_sale = [row for row in products
               if row[7] <= day.isoformat() and not (row[8] and day.year > 2022)]
    count = dice.pick_weighted((1, 2, 3, 4, 5, 6), (26, 28, 20, 13, 8, 5))
    price_level = {2021: 0.88, 2022: 0.93, 2023: 0.97, 2024: 1.0}[day.year]
    discount = dice.pick_weighted((0.0, 0.05, 0.1, 0.15), (70, 14, 11, 5))
    rows = []
    for line_no, product in enumerate(dice.pick_some(on_sale, count), 1):
        cheap = product[4] < 40
        if is_firm:
            quantity = dice.between(4, 24) if cheap else dice.between(1, 8)
        else:
            quantity = dice.between(1, 6) if cheap else dice.pick_weighted((1, 2, 3), (75, 20, 5))
        gift = dice.pick(GIFT_TEXTS) if not is_firm and dice.chance(0.06) else None
        rows.append((order_id, line_no, product[0], quantity,
                     money(product[4] * price_level), discount, gift))
    return rows


def make_payments(dice, rows, order_id, day, status, channel, total):
    if status == "cancelled" or (status == "new" and channel != "web"):
        return
    if channel == "web":
        method = "card" if dice.chance(0.85) else "transfer"
    elif channel == "shop":
        method = "card" if dice.chance(0.7) else "cash"
    else:
        method = "invoice" if dice.chance(0.7) else "transfer"
    if channel != "shop" and dice.chance(0.05):
        return
    if method in ("card", "cash"):
        paid_on = day
    else:
        paid_on = day + datetime.timedelta(
            dice.between(6, 28) if dice.chance(0.8) else dice.between(29, 75))
    parts = [total]
    if method == "invoice" and total > 400 and dice.chance(0.15):
        first = money(total * 0.4)
        parts = [first, money(total - first)]
    for amount in parts:
        if paid_on > LAST_DAY:
            return
        reference = None
        if method in ("invoice", "transfer"):
            reference = "%d-%05d" % (paid_on.year, dice.between(1, 99999))
        rows.append((len(rows) + 1, order_id, paid_on, method, amount, reference))
        paid_on += datetime.timedelta(dice.between(14, 35))


def make_shipments(dice, rows, order_id, day, status, channel, lines, products):
    if channel == "shop" or status in ("cancelled", "new"):
        return
    weights = [products[line[2] - 1][6] for line in lines]
    weight = None
    if None not in weights:
        weight = round(sum(w * line[3] for w, line in zip(weights, lines)) + 0.3, 1)
    parcels = 2 if weight is not None and weight > 20 and dice.chance(0.6) else 1
    shipper = dice.pick_weighted((1, 2, 3, 4), (45, 25, 20, 10))
    packed = day + datetime.timedelta(dice.between(0, 4))
    for parcel in range(parcels):
        shipped_at = tracking = None
        # The second parcel of an order on its way may still be waiting.
        waiting = status == "packed" or (status == "shipped" and parcel == 1)
        if not waiting:
            sent = packed + datetime.timedelta(
                dice.between(0, 3) if dice.chance(0.9) else dice.between(4, 12))
            if sent > LAST_DAY:
                sent = LAST_DAY
            shipped_at = "%s %s" % (sent, clock(dice, 9, 19))
            if dice.chance(0.95):
                tracking = "%s%08d" % (("FP", "BH", "LK", "NF")[shipper - 1],
                                       dice.between(0, 99999999))
        rows.append((len(rows) + 1, order_id, shipper, min(packed, LAST_DAY), shipped_at,
                     tracking, None if weight is None else round(weight / parcels, 1)))


def make_returns(dice, rows, day, status, lines):
    if status != "delivered":
        return
    for line in lines:
        if not dice.chance(0.035):
            continue
        when = day + datetime.timedelta(dice.between(9, 40))
        if when > LAST_DAY:
            continue
        rows.append((len(rows) + 1, line[0], line[1], when, dice.between(1, line[3]),
                     dice.pick(RETURN_REASONS), int(dice.chance(0.8))))


def make_tables():
    """The rows of every table, in an order that satisfies the foreign keys."""
    dice = Dice(SEED)
    customers = make_customers(dice)
    products = make_products(dice)
    # Some customers ask for the catalogue and never order; some order often.
    eagerness = [dice.pick_weighted((0, 1, 2, 5), (13, 45, 30, 12)) for _ in customers]
    orders, lines, payments, shipments, returns = [], [], [], [], []
    for order_id, day in enumerate(make_order_dates(dice), FIRST_ORDER_ID):
        known = [(row, eager) for row, eager in zip(customers, eagerness) if row[10] <= day]
        customer = dice.pick_weighted(*zip(*known))
        country = COUNTRIES[customer[9] - 1].name
        is_firm = customer[1] is not None
        if is_firm:
            channel = dice.pick_weighted(("web", "phone", "letter"), (35, 55, 10))
        elif country == "Norway":
            channel = dice.pick_weighted(("web", "shop"), (40, 60 if customer[8] == "Oslo" else 8))
        else:
            channel = dice.pick_weighted(("web", "phone", "letter"), (78, 18, 4))
        status = pick_status(dice, (LAST_DAY - day).days)
        order_lines = make_lines(dice, order_id, day, is_firm, products)
        goods = sum(money(line[3] * line[4] * (1 - line[5])) for line in order_lines)
        freight = 0 if channel == "shop" or goods >= 500 else dice.pick((4.9, 6.9, 9.9, 14.9))
        total = money(goods + freight)
        required = None
        if dice.chance(0.7):
            required = day + datetime.timedelta(dice.between(7, 21))
        orders.append((order_id, customer[0], pick_clerk(dice, country, channel, day), day,
                       "%s %s" % (day, clock(dice, 7, 20)), required, status, channel,
                       freight, total,
                       dice.pick(ORDER_COMMENTS) if dice.chance(0.12) else None))
        lines += order_lines
        make_payments(dice, payments, order_id, day, status, channel, total)
        make_shipments(dice, shipments, order_id, day, status, channel, order_lines, products)
        make_returns(dice, returns, day, status, order_lines)
    country_ids = {country.name: number for number, country in enumerate(COUNTRIES, 1)}
    return (
        ("countries", [(country_ids[c.name], c.name, c.iso, c.continent, c.in_eu)
                       for c in COUNTRIES]),
        ("customers", customers),
        ("employees", [(number, given, family, title, None if boss is None else boss + 1,
                        born, hired, salary, shift, phone, active)
                       for number, (given, family, title, boss, born, hired, salary, shift,
                                    phone, active) in enumerate(EMPLOYEES, 1)]),
        ("suppliers", [(number, name, city, country_ids[country],
                        None if number % 5 == 0 else "+00 555 %04d" % (1000 + 37 * number),
                        rating)
                       for number, (name, city, country, rating) in enumerate(SUPPLIERS, 1)]),
        ("categories", [(number, name, description)
                        for number, (name, description, _) in enumerate(CATALOGUE, 1)]),
        ("products", products),
        ("shippers", [(number,) + shipper for number, shipper in enumerate(SHIPPERS, 1)]),
        ("orders", orders),
        ("Order Lines", lines),
        ("payments", payments),
        ("shipments", shipments),
        ("returns", returns),
    )


def stored(value):
    return value.isoformat() if isinstance(value, datetime.date) else value


def write_database(path):
    connection = sqlite3.connect(path)
    try:
        connection.executescript("PRAGMA foreign_keys = ON;" + SCHEMA)
        for table, rows in make_tables():
            connection.executemany(
                'INSERT INTO "%s" VALUES (%s)' % (table, ", ".join("?" * len(rows[0]))),
                [[stored(value) for value in row] for row in rows])
        connection.commit()
    finally:
        connection.close()


def main(arguments):
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print("usage: python3 make_orders_db.py OUT.sqlite", file=sys.stderr)
        return 2
    target = arguments[0]
    draft = "%s.%d.new" % (target, os.getpid())
    try:
        if os.path.exists(draft):
            os.remove(draft)
        write_database(draft)
        os.replace(draft, target)
    except (OSError, sqlite3.Error) as error:
        print("make_orders_db.py: %s: %s" % (target, error), file=sys.stderr)
        return 1
    finally:
        if os.path.exists(draft):
            os.remove(draft)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
