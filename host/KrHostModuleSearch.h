#pragma once
// Where the system finds a module file by the name a user gives, as the
// linker's first mapping of it does: a name with a directory is that file;
// otherwise the standard search runs through the program's folder, the
// system folders, the current folder and PATH, and a name without an
// extension gets ".dll".
//
//   KrHostModuleSearch found = krhostFindModule(L"hello");
//   if (found.path.empty()) ... found.fileName ("hello.dll"), found.directories, found.otherNames ...

#include <string>
#include <vector>

struct KrHostModuleSearch {
  std::wstring path;                      // the file found, or empty
  std::wstring fileName;                  // what was looked for
  std::vector<std::wstring> directories;  // where, in order, when the name has no directory
  std::vector<std::wstring> otherNames;   // files of an extension-less name with .kra or .krx
};

KrHostModuleSearch krhostFindModule(const std::wstring& name);

// The directory part of path, with its trailing separator ("" when there is none).
std::wstring krhostDirectoryOf(const std::wstring& path);
