// What a user sees of a results sheet.
#pragma once

#include "ui/user.h"

struct Placed {
  int id;
  int x, y, width, height;
};

/// The controls of the sheet's page, in dialog units.
inline constexpr Placed kControls[] = {
    {1023, 7, 7, 20, 20},     {1024, 45, 10, 170, 17}, {1029, 7, 32, 241, 1},    {1025, 7, 39, 94, 9},
    {1005, 103, 39, 145, 12}, {1021, 7, 51, 20, 20},   {1026, 36, 52, 46, 8},    {1006, 103, 52, 145, 19},
    {1003, 159, 74, 89, 14},  {1028, 7, 94, 241, 1},   {1027, 7, 102, 94, 9},    {1007, 103, 102, 145, 12},
    {1022, 7, 118, 20, 20},   {201, 37, 118, 211, 90}, {1004, 159, 214, 89, 14},
};
inline constexpr int kDecryptionControls[] = {1025, 1005, 1021, 1026, 1006, 1003};
inline constexpr int kVerificationControls[] = {1027, 1007, 1022, 201, 1004, 1028};

struct Column {
  std::wstring heading;
  int width;
  int format;
  int index;
  bool operator==(const Column&) const = default;
};

/// The list of signers.
struct SeenList {
  std::vector<Column> columns;
  std::vector<std::vector<std::wstring>> rows;
  std::vector<int> images;
  DWORD extendedStyle = 0;
  int imageCount = 0;
  SIZE imageSize{};
};

/// What a user sees of a sheet before the answer.
struct SeenSheet {
  SeenWindow window;
  SeenList list;
  /// Of kControls, in pixels.
  std::vector<RECT> expectedPlaces;
  HICON header = nullptr, decryption = nullptr, verification = nullptr;
  std::wstring tab;
  /// The control that has the focus.
  int focus = 0;
  /// The first visible character of the verdict on the signatures.
  LRESULT verdictFrom = 0;
};

SeenSheet LookAtSheet(HWND sheet);
