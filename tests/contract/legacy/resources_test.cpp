// The dialog templates and icons that the module's file carries, read as the resource compiler wrote them.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <ostream>

#include "support/contract_test.h"

namespace {

/// One control of an extended template. `kind` is the class, or "#" and the atom; a resource as its text is "#" and
/// the number.
struct Control {
  DWORD id;
  std::wstring kind;
  std::wstring text;
  short x, y, width, height;

  bool operator==(const Control&) const = default;
};

std::string Utf8Of(const std::wstring& text) {
  std::string utf8(text.size() * 3 + 1, '\0');
  utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                      utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr)));
  return utf8;
}

std::ostream& operator<<(std::ostream& out, const Control& control) {
  return out << control.id << " " << Utf8Of(control.kind) << " \"" << Utf8Of(control.text) << "\" " << control.x << ","
             << control.y << " " << control.width << "x" << control.height;
}

struct Template {
  DWORD style = 0;
  short x = 0, y = 0, width = 0, height = 0;
  std::wstring caption, font;
  WORD fontSize = 0;
  std::vector<Control> controls;
  std::vector<DWORD> styles;

  DWORD styleOf(DWORD id) const {
    for (size_t i = 0; i < controls.size(); ++i)
      if (controls[i].id == id) return styles[i];
    ADD_FAILURE() << "no control " << id;
    return 0;
  }
};

constexpr const wchar_t* kButton = L"#128";
constexpr const wchar_t* kEdit = L"#129";
constexpr const wchar_t* kStatic = L"#130";
constexpr const wchar_t* kNamedStatic = L"STATIC";
// The resource compiler writes the names of classes in capitals; the platform reads them in any case.
constexpr const wchar_t* kListView = L"SYSLISTVIEW32";

class Reader {
 public:
  explicit Reader(const void* data) : next_(static_cast<const uint8_t*>(data)), start_(next_) {}

  template <class T>
  T read() {
    T value;
    std::memcpy(&value, next_, sizeof value);
    next_ += sizeof value;
    return value;
  }
  /// A text, nothing, or "#" and a number.
  std::wstring name() {
    const WORD first = read<WORD>();
    if (first == 0xFFFF) return L"#" + std::to_wstring(read<WORD>());
    std::wstring text;
    for (WORD character = first; character != 0; character = read<WORD>()) text += static_cast<wchar_t>(character);
    return text;
  }
  void align() { next_ += (4 - (next_ - start_) % 4) % 4; }
  void skip(size_t bytes) { next_ += bytes; }

 private:
  const uint8_t* next_;
  const uint8_t* start_;
};

Template TemplateOf(int number) {
  const HMODULE module = Module::get().handle();
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), reinterpret_cast<LPCWSTR>(RT_DIALOG));
  Template dialog;
  if (found == nullptr) {
    ADD_FAILURE() << "no template " << number;
    return dialog;
  }
  Reader in(LockResource(LoadResource(module, found)));
  EXPECT_EQ(0xFFFF0001u, in.read<DWORD>()) << "an extended template";
  in.skip(8);
  dialog.style = in.read<DWORD>();
  const WORD count = in.read<WORD>();
  dialog.x = in.read<short>(), dialog.y = in.read<short>();
  dialog.width = in.read<short>(), dialog.height = in.read<short>();
  EXPECT_EQ(L"", in.name());
  EXPECT_EQ(L"", in.name());
  dialog.caption = in.name();
  dialog.fontSize = in.read<WORD>();
  in.skip(4);
  dialog.font = in.name();
  for (WORD i = 0; i < count; ++i) {
    in.align();
    in.skip(8);
    dialog.styles.push_back(in.read<DWORD>());
    Control control;
    control.x = in.read<short>(), control.y = in.read<short>();
    control.width = in.read<short>(), control.height = in.read<short>();
    control.id = in.read<DWORD>();
    control.kind = in.name();
    control.text = in.name();
    in.skip(in.read<WORD>());
    dialog.controls.push_back(control);
  }
  return dialog;
}

TEST(LegacyResources, TheResultsPageHasItsControls) {
  const Template page = TemplateOf(117);
  EXPECT_EQ(L"Информация", page.caption);
  EXPECT_EQ(255, page.width);
  EXPECT_EQ(235, page.height);
  EXPECT_EQ(L"MS Shell Dlg", page.font);
  EXPECT_EQ(8, page.fontSize);
  EXPECT_EQ(static_cast<DWORD>(WS_CHILD | WS_DISABLED | WS_CAPTION),
            page.style & (WS_CHILD | WS_DISABLED | WS_CAPTION));
  EXPECT_EQ(0u, page.style & (WS_POPUP | WS_VISIBLE | WS_SYSMENU));
  const std::vector<Control> expected = {
      {1023, kNamedStatic, L"#1101", 7, 7, 20, 20},
      {1024, kStatic, L"Сведения о защищенном сообщении", 45, 10, 170, 17},
      {1029, kNamedStatic, L"", 7, 32, 241, 1},
      {1025, kStatic, L"Результат расшифрования:", 7, 39, 94, 9},
      {1005, kEdit, L"", 103, 39, 145, 12},
      {1021, kNamedStatic, L"#1107", 7, 51, 20, 20},
      {1026, kStatic, L"Зашифровал:", 36, 52, 46, 8},
      {1006, kEdit, L"", 103, 52, 145, 19},
      {1003, kButton, L"Показать сертификат...", 159, 74, 89, 14},
      {1028, kNamedStatic, L"", 7, 94, 241, 1},
      {1027, kStatic, L"Результат проверки ЭП:", 7, 102, 94, 9},
      {1007, kEdit, L"", 103, 102, 145, 12},
      {1022, kNamedStatic, L"#1108", 7, 118, 20, 20},
      {201, kListView, L"", 37, 118, 211, 90},
      {1004, kButton, L"Показать сертификат...", 159, 214, 89, 14},
  };
  EXPECT_EQ(expected, page.controls);
}

TEST(LegacyResources, TheControlsOfTheResultsPageHaveTheirStyles) {
  const Template page = TemplateOf(117);
  for (DWORD icon : {1023u, 1021u, 1022u}) EXPECT_EQ(static_cast<DWORD>(SS_ICON), page.styleOf(icon) & SS_TYPEMASK);
  for (DWORD line : {1029u, 1028u}) EXPECT_EQ(static_cast<DWORD>(SS_ETCHEDHORZ), page.styleOf(line) & SS_TYPEMASK);
  for (DWORD edit : {1005u, 1006u, 1007u}) EXPECT_TRUE(page.styleOf(edit) & ES_READONLY) << edit;
  EXPECT_TRUE(page.styleOf(1005) & ES_AUTOHSCROLL);
  EXPECT_FALSE(page.styleOf(1005) & WS_BORDER);
  for (DWORD button : {1003u, 1004u})
    EXPECT_EQ(static_cast<DWORD>(BS_PUSHBUTTON), page.styleOf(button) & BS_TYPEMASK) << button;
  const DWORD list = page.styleOf(201);
  EXPECT_EQ(static_cast<DWORD>(LVS_REPORT), list & LVS_TYPEMASK);
  EXPECT_TRUE(list & LVS_SINGLESEL);
  EXPECT_TRUE(list & LVS_SHOWSELALWAYS);
  EXPECT_TRUE(list & LVS_NOSORTHEADER);
  EXPECT_FALSE(list & (LVS_SORTASCENDING | LVS_SORTDESCENDING));
  for (const Control& control : page.controls) {
    EXPECT_EQ(static_cast<DWORD>(WS_CHILD | WS_VISIBLE), page.styleOf(control.id) & (WS_CHILD | WS_VISIBLE))
        << control.id;
  }
}

TEST(LegacyResources, TheTextsOfTheResultsPageAreReadAndScrolledAsFitsTheirLines) {
  constexpr DWORD kAll = WS_BORDER | WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_READONLY | ES_MULTILINE |
                         ES_AUTOHSCROLL | ES_AUTOVSCROLL | ES_WANTRETURN | ES_CENTER | ES_RIGHT;
  const Template page = TemplateOf(117);
  EXPECT_EQ(static_cast<DWORD>(ES_READONLY | ES_AUTOHSCROLL | WS_TABSTOP), page.styleOf(1005) & kAll);
  EXPECT_EQ(static_cast<DWORD>(ES_READONLY | ES_MULTILINE | WS_BORDER | WS_TABSTOP), page.styleOf(1006) & kAll);
  EXPECT_EQ(static_cast<DWORD>(ES_READONLY | ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP), page.styleOf(1007) & kAll);
}

TEST(LegacyResources, TheButtonsAndTheListOfTheResultsPageAreTabStops) {
  const Template page = TemplateOf(117);
  for (DWORD id : {1003u, 1004u, 201u}) EXPECT_TRUE(page.styleOf(id) & WS_TABSTOP) << id;
}

TEST(LegacyResources, TheSavePanelHasItsCheckBox) {
  const Template panel = TemplateOf(118);
  EXPECT_EQ(30, panel.x);
  EXPECT_EQ(17, panel.y);
  EXPECT_EQ(200, panel.width);
  EXPECT_EQ(16, panel.height);
  EXPECT_TRUE(panel.style & WS_CHILD);
  EXPECT_FALSE(panel.style & (WS_POPUP | WS_BORDER));
  const std::vector<Control> expected = {{119, kButton, L"Сохранить файл с ЭП", 6, 1, 100, 8}};
  EXPECT_EQ(expected, panel.controls);
  EXPECT_EQ(static_cast<DWORD>(BS_AUTOCHECKBOX), panel.styleOf(119) & BS_TYPEMASK);
  EXPECT_EQ(static_cast<DWORD>(WS_GROUP | WS_TABSTOP), panel.styleOf(119) & (WS_GROUP | WS_TABSTOP));
}

/// The sizes of the pictures in an icon of the module.
std::vector<int> SizesOfIcon(int number) {
  const HMODULE module = Module::get().handle();
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), reinterpret_cast<LPCWSTR>(RT_GROUP_ICON));
  if (found == nullptr) return {};
  Reader in(LockResource(LoadResource(module, found)));
  in.skip(4);
  std::vector<int> sizes(in.read<WORD>());
  for (int& size : sizes) {
    size = in.read<uint8_t>();
    in.skip(13);
  }
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

TEST(LegacyResources, EveryIconHasPicturesOfTheUsualSizes) {
  for (int icon = 1101; icon <= 1112; ++icon) EXPECT_EQ((std::vector<int>{16, 32}), SizesOfIcon(icon)) << icon;
}

TEST(LegacyResources, TheNumberOfTheSystemsErrorIconIsFree) { EXPECT_EQ(std::vector<int>{}, SizesOfIcon(32513)); }

}  // namespace
