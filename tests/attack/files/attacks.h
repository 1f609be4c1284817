// The attacks of this folder.
#pragma once

#include "cases.h"

/// Paths that name no ordinary file, as input and as output of every operation; without `all` each second.
void AttackPaths(Cases& cases, const Folders& folders, bool all);
/// Files and folders that deny access to this user: `scratch\denied` and `scratch\secret.bin`.
void AttackDenied(Cases& cases, const Folders& folders);
/// Every call of the engine to the platform's files fails once.
void AttackFaults(Cases& cases, const Folders& folders);
/// The input changes while it is read; without `all` its size stays.
void AttackChanges(Cases& cases, const Folders& folders, bool all);
/// Processes that end in the middle of what they write: at each call, and `kills` times anywhere.
void AttackKills(Cases& cases, const Folders& folders, unsigned seed, unsigned points, unsigned kills);
/// Fifty processes at once on one store.
void AttackCrowd(Cases& cases, const Folders& folders);

/// What a process of the last two does: the exit code.
int RunChild(const Folders& folders, const std::vector<std::string>& work);
