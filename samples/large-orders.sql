SELECT customers.company AS Company, orders.order_date AS Ordered, orders.total AS Total
FROM orders
     INNER JOIN customers ON (orders.customer_id=customers.customer_id)
     INNER JOIN countries ON (customers.country_id=countries.country_id)
WHERE countries.name IN ('Norway','Sweden') AND orders.total > 1000 AND orders.order_date >= '2024-01-01'
  AND NOT (orders.status = 'cancelled')
ORDER BY 3 DESC
