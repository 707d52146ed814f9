CREATE TABLE Catalog (ID INTEGER PRIMARY KEY, DateStamp VARCHAR(30), SetNameID INTEGER, Extension VARCHAR(20),
  Filename VARCHAR(255), File VARCHAR(255), LongPathID INTEGER, StoreName VARCHAR(80), StoreMethod INTEGER,
  Plugin VARCHAR(80), Restore BOOLEAN, OrigSize INTEGER, Status INTEGER, Attributes INTEGER,
  SubFolder VARCHAR(80), EncryptMethod INTEGER, OrigName VARCHAR(255));
CREATE TABLE LongPaths (PathID INTEGER PRIMARY KEY, LongPath VARCHAR(400));
CREATE TABLE SetNames (ID INTEGER PRIMARY KEY, Name VARCHAR(80));
CREATE TABLE BackupAudit (SetNameID INTEGER, DateStamp VARCHAR(30), Extension VARCHAR(20), Permanent BOOLEAN,
  Status INTEGER);
CREATE VIEW FullCatalog AS SELECT Catalog.OrigName AS OrigName, Catalog.DateStamp AS DateStamp, Catalog.ID AS ID,
  Catalog.SetNameID AS SetNameID, Catalog.Extension AS Extension, Catalog.File AS File, Catalog.Restore AS Restore,
  Catalog.OrigSize AS OrigSize, Catalog.Status AS Status, Catalog.Attributes AS Attributes,
  Catalog.Filename AS Filename, Catalog.StoreMethod AS StoreMethod, Catalog.StoreName AS StoreName,
  Catalog.LongPathID AS LongPathID, SetNames.Name AS SetName, Catalog.SubFolder AS SubFolder,
  Catalog.Plugin AS Plugin, Catalog.EncryptMethod AS EncryptMethod
  FROM Catalog LEFT JOIN SetNames ON Catalog.SetNameID = SetNames.ID;
