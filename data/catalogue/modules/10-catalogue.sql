-- The edition of the installation, its menus and its help contexts. Not among the suite's tables: an
-- installation without a row elsewhere has these.
INSERT INTO [Catalogue] ([ModuleNumber], [ModuleKey], [ProgramPath]) VALUES ({modulenumber}, '{modulekey}', '{programpath}');

INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Cash Book', True, 'Modules', 'QYCashbook.exe', 0, 10);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Planner', True, 'Modules', 'QYPlanner.exe', 0, 20);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Map', True, 'Modules', 'QYMap.exe', 0, 30);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Diary', True, 'Modules', 'QYDiary.exe', 0, 40);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Wage Book', True, 'Modules', 'QYWageBook.exe', 0, 50);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Help on this screen', True, 'Help', '{helpfile}', 1, 110);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('How do &I ...', True, 'Help', '{helpfile}', 2, 120);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Contents', True, 'Help', '{helpfile}', 0, 130);
INSERT INTO [MenuEntries] ([Caption], [Visible], [Group], [FileName], [HelpType], [Order]) VALUES ('&Wizards', True, 'Help', 'Wizards.chm', 0, 140);

-- Number 8 is the configuration screen.
INSERT INTO [HelpContexts] ([Number], [FormContext], [HowDoIContext]) VALUES (8, 800, 850);
