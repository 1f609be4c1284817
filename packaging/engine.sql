# The engine is no part of the package. Its folder is the property ENGINEFOLDER; unless given, it is the package's own.
# ENGINEFOLDER=none installs the module alone. An upgrade takes the former engine away with the former version, and asks again.
CREATE TABLE `DrLocator` (`Signature_` CHAR(72) NOT NULL, `Parent` CHAR(72), `Path` CHAR(255), `Depth` SHORT PRIMARY KEY `Signature_`, `Parent`, `Path`)
CREATE TABLE `MoveFile` (`FileKey` CHAR(72) NOT NULL, `Component_` CHAR(72) NOT NULL, `SourceName` CHAR(255) LOCALIZABLE, `DestName` CHAR(255) LOCALIZABLE, `SourceFolder` CHAR(72), `DestFolder` CHAR(72) NOT NULL, `Options` SHORT NOT NULL PRIMARY KEY `FileKey`)
# The folder of the package is known once the source is resolved.
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('ResolveSource', 'NOT Installed', 20)
INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) VALUES ('EngineBesidePackage', 51, 'ENGINEFOLDER', '[SourceDir]')
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('EngineBesidePackage', 'NOT ENGINEFOLDER AND NOT Installed', 21)
INSERT INTO `Signature` (`Signature`, `FileName`) VALUES ('EngineGiven', 'tavl1.dll')
INSERT INTO `DrLocator` (`Signature_`, `Path`, `Depth`) VALUES ('EngineGiven', '[ENGINEFOLDER]', 0)
INSERT INTO `AppSearch` (`Property`, `Signature_`) VALUES ('ENGINEGIVEN', 'EngineGiven')
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('AppSearch', 50)
INSERT INTO `LaunchCondition` (`Condition`, `Description`) VALUES ('Installed OR ENGINEGIVEN OR ENGINEFOLDER = "none"', 'tavl1.dll was not found in [ENGINEFOLDER]. Put it beside this package, or name its folder: ENGINEFOLDER="C:\folder". ENGINEFOLDER=none installs the module without it; its classes answer 0x8007007E until tavl1.dll lies beside tavlcom.dll.')
INSERT INTO `MoveFile` (`FileKey`, `Component_`, `SourceName`, `DestName`, `SourceFolder`, `DestFolder`, `Options`) VALUES ('Engine', 'Module', 'tavl1.dll', 'tavl1.dll', 'ENGINEFOLDER', 'INSTALLFOLDER', 0)
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('MoveFiles', 3800)
INSERT INTO `RemoveFile` (`FileKey`, `Component_`, `FileName`, `DirProperty`, `InstallMode`) VALUES ('Engine', 'Module', 'tavl1.dll', 'INSTALLFOLDER', 2)
UPDATE `Property` SET `Value` = 'WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;ENGINEFOLDER' WHERE `Property` = 'SecureCustomProperties'
# A version that is known decides which file is newer.
UPDATE `File` SET `Version` = '@VERSION@.0' WHERE `File` = 'tavlcom.dll'
