#include "standin/exports/texts.h"

#include <windows.h>

#include <cwchar>
#include <string>

#include "standin/base/codes.h"

namespace standin {
namespace {

struct CodeText {
  int32_t code;
  const wchar_t* text;
};

/// Less than 256 characters each: the buffers of some callers are no longer.
constexpr CodeText kTexts[] = {
    {kOk, L"Операция выполнена успешно."},
    {1, L"Операция не выполнена."},
    {ERROR_FILE_NOT_FOUND, L"Не удаётся найти указанный файл."},
    {ERROR_PATH_NOT_FOUND, L"Не удаётся найти указанный путь."},
    {ERROR_TOO_MANY_OPEN_FILES, L"Открыто слишком много файлов."},
    {ERROR_ACCESS_DENIED, L"Отказано в доступе."},
    {ERROR_INVALID_HANDLE, L"Неверный дескриптор."},
    {kWinOutOfMemory, L"Недостаточно памяти."},
    {ERROR_INVALID_DATA, L"Недопустимые данные."},
    {ERROR_OUTOFMEMORY, L"Недостаточно памяти для завершения операции."},
    {ERROR_INVALID_DRIVE, L"Не удаётся найти указанный диск."},
    {ERROR_WRITE_PROTECT, L"Носитель защищён от записи."},
    {ERROR_NOT_READY, L"Устройство не готово."},
    {ERROR_CRC, L"Ошибка в данных (CRC)."},
    {ERROR_BAD_LENGTH, L"Файл прочитан не полностью."},
    {ERROR_WRITE_FAULT, L"Ошибка записи на устройство."},
    {ERROR_READ_FAULT, L"Ошибка чтения с устройства."},
    {ERROR_GEN_FAILURE, L"Присоединённое устройство не работает."},
    {ERROR_SHARING_VIOLATION, L"Файл занят другим процессом."},
    {ERROR_LOCK_VIOLATION, L"Часть файла заблокирована другим процессом."},
    {ERROR_HANDLE_EOF, L"Достигнут конец файла."},
    {ERROR_HANDLE_DISK_FULL, L"Диск заполнен."},
    {ERROR_NOT_SUPPORTED, L"Запрос не поддерживается."},
    {ERROR_BAD_NETPATH, L"Не найден сетевой путь."},
    {ERROR_BAD_NET_NAME, L"Не найдено сетевое имя."},
    {ERROR_FILE_EXISTS, L"Файл уже существует."},
    {ERROR_CANNOT_MAKE, L"Не удаётся создать файл или папку."},
    {kWinInvalidParameter, L"Параметр задан неверно."},
    {ERROR_OPEN_FAILED, L"Не удаётся открыть файл или устройство."},
    {kWinDiskFull, L"Недостаточно места на диске."},
    {ERROR_INSUFFICIENT_BUFFER, L"Буфер слишком мал."},
    {ERROR_INVALID_NAME, L"Неверное имя файла или папки."},
    {ERROR_MOD_NOT_FOUND, L"Не найден указанный модуль."},
    {ERROR_PROC_NOT_FOUND, L"Не найдена указанная процедура."},
    {ERROR_BUSY, L"Ресурс занят."},
    {ERROR_ALREADY_EXISTS, L"Объект уже существует."},
    {ERROR_FILENAME_EXCED_RANGE, L"Имя файла слишком длинное."},
    {ERROR_MORE_DATA, L"Имеются дополнительные данные."},
    {ERROR_NO_MORE_ITEMS, L"Дополнительные данные отсутствуют."},
    {ERROR_DIRECTORY, L"Неверное имя папки."},
    {ERROR_IO_DEVICE, L"Ошибка ввода-вывода на устройстве."},
    {ERROR_CANCELLED, L"Операция отменена пользователем."},
    {ERROR_TIMEOUT, L"Истекло время ожидания."},

    {kBadSession, L"Сеанс библиотеки не открыт или уже закрыт."},
    {kBadStream, L"Поток не открыт, уже завершён или открыт для другой операции."},
    {kNotSupported, L"Операция не поддерживается этой библиотекой."},
    {kRemoteSession, L"Удалённый сеанс не поддерживается этой библиотекой."},
    {kProfileNotFound, L"Профиль не найден."},
    {kKeyFileMissing, L"Не найден файл с закрытым ключом."},
    {kWrongPin, L"Неверный ПИН-код (пароль) ключевого контейнера."},
    {kKeyFileDamaged, L"Файл с закрытым ключом повреждён или имеет неизвестный формат."},
    {kStoreUnreadable, L"Справочник сертификатов недоступен для чтения."},
    {kOwnCertificateNotFound, L"Не найден рабочий сертификат с закрытым ключом."},
    {kNoStore, L"Справочник сертификатов не задан."},
    {kNoDisplay, L"Невозможно показать окно: нет доступа к рабочему столу."},
    {kStreamOrder, L"Нарушен порядок вызовов при потоковой обработке."},
    {kOwnCertificateExpired, L"Срок действия рабочего сертификата истёк."},

    {kMessageDamaged, L"Сообщение повреждено или имеет неизвестный формат."},
    {kNotSigned, L"Сообщение не содержит электронной подписи."},
    {kNotEncrypted, L"Сообщение не зашифровано."},
    {kContentMissing, L"Не заданы подписанные данные."},
    {kContentMismatch, L"Данные не соответствуют подписанному сообщению."},
    {kFileChanged, L"Файл изменился во время обработки."},
    {kTooLarge, L"Данные слишком велики для этой операции."},

    {kSigningFailed, L"Не удалось сформировать электронную подпись."},
    {kBadSignature, L"Электронная подпись неверна."},
    {kSignerUnknown, L"Не найден сертификат подписавшего."},
    {kIssuerUnknown, L"Сертификат выдан неизвестным удостоверяющим центром."},
    {kExpired, L"Срок действия сертификата истёк."},
    {kNotYetValid, L"Срок действия сертификата ещё не наступил."},
    {kRevoked, L"Сертификат отозван."},
    {kChainBroken, L"Цепочка сертификатов не прошла проверку."},
    {kKeyUsageMissing, L"Назначение ключа сертификата не соответствует требуемому."},
    {kPolicyMissing, L"Сертификат не содержит требуемой политики."},
    {kExtKeyUsageMissing, L"Сертификат не содержит требуемой области использования ключа."},
    {kExtensionMissing, L"Сертификат не содержит требуемого расширения."},
    {kTooFewSignatures, L"Верных подписей меньше, чем требуется."},
    {kNoSuchSignature, L"Подписи с указанным номером нет."},
    {kAlgorithmUnknown, L"Алгоритм не поддерживается."},
    {kKeyPeriodOver, L"Срок действия закрытого ключа не наступил или истёк."},

    {kNoRecipients, L"Не заданы получатели зашифрованного сообщения."},
    {kRecipientNotFound, L"Не найден сертификат получателя."},
    {kRecipientAmbiguous, L"Получателю соответствует несколько сертификатов."},
    {kRecipientUnsuitable, L"Сертификат получателя не предназначен для шифрования."},
    {kNotARecipient, L"Сообщение зашифровано не для этого ключа."},
    {kDecryptionFailed, L"Не удалось расшифровать сообщение."},
    {kEncryptionFailed, L"Не удалось зашифровать данные."},

    {kCertificateDamaged, L"Сертификат повреждён или имеет неизвестный формат."},
    {kCrlDamaged, L"Список отозванных сертификатов повреждён или имеет неизвестный формат."},
    {kRequestDamaged, L"Запрос на сертификат повреждён или имеет неизвестный формат."},
    {kCrlForged, L"Подпись списка отозванных сертификатов неверна."},
    {kCrlOlder, L"В справочнике есть более новый список отозванных сертификатов."},
    {kNothingToExport, L"Нет объектов для экспорта."},
    {kNothingToImport, L"Нет объектов для импорта."},
    {kKeyDoesNotMatch, L"Сертификат не соответствует ни одному закрытому ключу."},
    {kRequestFailed, L"Не удалось сформировать запрос на сертификат."},
    {kCrlUnusable, L"Список отозванных сертификатов невозможно использовать."},

    {kWeakAlgorithm, L"Подпись верна, но использован слабый алгоритм или слишком короткий ключ."},
    {kRevocationUnclear, L"Имеющиеся списки отозванных сертификатов не охватывают сертификат."},

    {kHashUnknown, L"Неизвестный алгоритм хеширования."},
    {kLengthRefused, L"Недопустимая длина."},
    {kRandomFailed, L"Не удалось получить случайные данные."},

    {kInternal, L"Внутренняя ошибка библиотеки."},
    {kVerifiedWithRemarks, L"Электронная подпись проверена с замечаниями."},
    {kOutsideValidity, L"Сертификат недействителен по сроку."},
    {kSelectionCancelled, L"Выбор сертификата отменён, или выбирать не из чего."},
};

const wchar_t* Find(int32_t code) {
  for (const CodeText& entry : kTexts) {
    if (entry.code == code) return entry.text;
  }
  return nullptr;
}

/// The low half of a code that was re-based (0xE069xxxx), made negative (0x8000xxxx) or comes from Windows
/// (0x8007xxxx).
int32_t WithoutFacility(int32_t code) {
  const uint32_t high = static_cast<uint32_t>(code) >> 16;
  return high == 0xE069 || high == 0x8000 || high == 0x8007 ? code & 0xFFFF : code;
}

void WriteRussian(const std::wstring& text, char* buffer, uint32_t size) {
  constexpr UINT kWindows1251 = 1251;
  char bytes[512] = {};
  WideCharToMultiByte(kWindows1251, 0, text.c_str(), -1, bytes, sizeof bytes - 1, nullptr, nullptr);
  lstrcpynA(buffer, bytes, static_cast<int>(size < sizeof bytes ? size : sizeof bytes));
}

}  // namespace

void WriteErrorText(int32_t code, char* buffer, uint32_t size) {
  const wchar_t* text = Find(code);
  if (text == nullptr) text = Find(WithoutFacility(code));
  wchar_t general[64];
  std::swprintf(general, sizeof general / sizeof *general, L"Неизвестная ошибка (код 0x%08X).",
                static_cast<unsigned>(code));
  WriteRussian(text != nullptr ? text : general, buffer, size);
}

void WriteCrlReport(const Store::CrlReload& reload, char* buffer, uint32_t size) {
  std::wstring text = L"Списки отозванных сертификатов прочитаны из справочника: всего " +
                      std::to_wstring(reload.lists) + L", новых " + std::to_wstring(reload.added) + L", устаревших " +
                      std::to_wstring(reload.outdated) + L".";
  WriteRussian(text, buffer, size);
}

}  // namespace standin
