-- The catalog on SQL Server: run it once in an empty database, for example
--   sqlcmd -S server -d Catalog -E -b -i sqlserver_catalog.sql
-- Names of files want a collation that ignores case, which is the servers' default.

CREATE TABLE [SetNames] (
  [ID] int NOT NULL CONSTRAINT [SetNamesKey] PRIMARY KEY,
  [Name] nvarchar(80) NULL
);

CREATE TABLE [LongPaths] (
  [PathID] int NOT NULL CONSTRAINT [LongPathsKey] PRIMARY KEY,
  [LongPath] nvarchar(max) NULL
);

CREATE TABLE [BackupAudit] (
  [ID] int IDENTITY(1, 1) NOT NULL CONSTRAINT [BackupAuditKey] PRIMARY KEY,
  [SetNameID] int NULL,
  [DateStamp] datetime NULL,
  [Extension] nvarchar(20) NULL,
  [Permanent] bit NULL,
  [Status] int NULL
);

CREATE TABLE [Catalog] (
  [ID] int NOT NULL CONSTRAINT [CatalogKey] PRIMARY KEY,
  [DateStamp] datetime NULL,
  [SetNameID] int NULL,
  [Extension] nvarchar(20) NULL,
  [Filename] nvarchar(260) NULL,
  [File] nvarchar(260) NULL,
  [LongPathID] int NULL,
  [StoreName] nvarchar(260) NULL,
  [StoreMethod] int NULL,
  [Plugin] nvarchar(80) NULL,
  [Restore] bit NOT NULL CONSTRAINT [CatalogUnmarked] DEFAULT 0,
  [OrigSize] bigint NULL,
  [Status] int NULL,
  [Attributes] int NULL,
  [SubFolder] nvarchar(260) NULL,
  [EncryptMethod] int NULL,
  [OrigName] nvarchar(1000) NULL
);

-- Marking looks a file up by these three.
CREATE INDEX [CatalogByRun] ON [Catalog] ([SetNameID], [Extension], [Filename]);
GO

CREATE VIEW [FullCatalog] AS
SELECT [Catalog].[OrigName] AS [OrigName], [Catalog].[DateStamp] AS [DateStamp], [Catalog].[ID] AS [ID],
  [Catalog].[SetNameID] AS [SetNameID], [Catalog].[Extension] AS [Extension], [Catalog].[File] AS [File],
  [Catalog].[Restore] AS [Restore], [Catalog].[OrigSize] AS [OrigSize], [Catalog].[Status] AS [Status],
  [Catalog].[Attributes] AS [Attributes], [Catalog].[Filename] AS [Filename],
  [Catalog].[StoreMethod] AS [StoreMethod], [Catalog].[StoreName] AS [StoreName],
  [Catalog].[LongPathID] AS [LongPathID], [SetNames].[Name] AS [SetName], [Catalog].[SubFolder] AS [SubFolder],
  [Catalog].[Plugin] AS [Plugin], [Catalog].[EncryptMethod] AS [EncryptMethod]
FROM [Catalog] LEFT JOIN [SetNames] ON [SetNames].[ID] = [Catalog].[SetNameID];
GO
