INSERT INTO SetNames VALUES (1, 'Office'), (2, 'büro'), (3, 'Archive');
INSERT INTO LongPaths VALUES (7, 'C:\Documents and Settings\user\long name.doc'), (8, 'unused');
INSERT INTO BackupAudit VALUES (1, '2026-01-01 08:00:00', '001', 1, 6), (1, '2026-02-01 08:00:00', '002', 0, 6),
  (2, '2026-03-01 00:00:00', '001', NULL, 6), (2, '2026-03-02 00:00:00', '002', 0, 3),
  (3, '2026-03-05 00:00:00', 'x01', 0, 6);
INSERT INTO Catalog (ID, DateStamp, SetNameID, Extension, Filename, File, LongPathID, StoreName, StoreMethod, Plugin,
  Restore, OrigSize, Status, OrigName) VALUES
  (1, '2026-01-01 08:00:00', 1, '001', 'C:\a.doc', 'a.doc', NULL, 's1', 1, '', 0, 10, 2, 'C:\a.doc'),
  (2, '2026-02-01 08:00:00', 1, '002', 'C:\a.doc', 'a.doc', NULL, 's2', 1, '', 0, 11, 2, 'C:\a.doc'),
  (3, '2026-02-01 08:00:00', 1, '002', 'C:\DOCUME~1\L.DOC', 'l.doc', 7, 's3', 1, '', 0, 12, 2, 'C:\long.doc'),
  (4, '2026-02-01 08:00:00', 1, '002', 'C:\it''s.txt', 'it''s.txt', NULL, 's4', 1, NULL, 1, 13, 2, 'C:\it''s.txt'),
  (5, '2026-03-01 00:00:00', 2, '001', 'D:\Ärger.txt', 'Ärger.txt', 99, 's5', 1, '', 7, NULL, 2, 'D:\Ärger.txt'),
  (6, '2026-03-01 00:00:00', 2, '001', 'D:\gone.txt', 'gone.txt', NULL, 's6', 1, '', 0, 15, 1, 'D:\gone.txt'),
  (7, '2026-02-01 08:00:00', 1, '002', 'mail', 'mail', NULL, 's7', 1, 'Exchange Server', NULL, 16, 2, 'mail');
