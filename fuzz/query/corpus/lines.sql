SELECT [t.f] -- comment
FROM [t]
WHERE [t].[g] != 2