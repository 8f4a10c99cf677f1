-- What the whole installation shares: the pages of each edition, and the module catalogue.

CREATE TABLE [Setup] (
    [modules] TEXT(50),
    [Name] TEXT(50),
    [Key] TEXT(1),
    [Frame] SHORT,
    [Order] SHORT
);
CREATE INDEX [SetupModules] ON [Setup] ([modules]);

-- The module catalogue: one row with the edition of the installation.
CREATE TABLE [Catalogue] (
    [ModuleNumber] LONG,
    [ModuleKey] TEXT(50),
    [ProgramPath] TEXT(255)
);

-- HelpType: 1 the edition's help at the form's context, 2 at the how-do-I context, else the file itself.
CREATE TABLE [MenuEntries] (
    [Caption] TEXT(50),
    [Visible] BIT,
    [Group] TEXT(20),
    [FileName] TEXT(100),
    [HelpType] LONG,
    [Order] LONG
);

CREATE TABLE [HelpContexts] (
    [Number] LONG PRIMARY KEY,
    [FormContext] LONG,
    [HowDoIContext] LONG
);
