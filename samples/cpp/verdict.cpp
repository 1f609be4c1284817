#include "verdict.h"

namespace {

constexpr LONG kVerifiedWithRemarks = static_cast<LONG>(0xE0700019);

struct Texts {
  LONG code;
  const wchar_t* russianWrong;
  const wchar_t* englishWrong;
  const wchar_t* russianAdvice;
  const wchar_t* englishAdvice;
};

constexpr Texts kGood = {0, L"Подпись верна", L"The signature is good", L"Ничего делать не нужно", L"Nothing to do"};
constexpr Texts kOutdated = {kVerifiedWithRemarks, L"Список отзыва устарел", L"A revocation list is out of date",
                             L"Обновите списки отзыва (refresh-lists)",
                             L"Refresh the revocation lists (refresh-lists)"};
constexpr Texts kUnknown = {-1, L"", L"", L"Сообщите администратору этот код",
                            L"Report this code to the administrator"};
constexpr Texts kTexts[] = {
    {0x7010, L"Файл повреждён или это не подпись", L"The file is damaged, or is not a signature",
     L"Попросите прислать файл снова", L"Ask for the file again"},
    {0x7011, L"В файле нет подписи", L"The file has no signature", L"Попросите отправителя подписать документ",
     L"Ask the sender to sign the document"},
    {0x7013, L"Нет подписанного документа", L"The signed document is missing", L"Положите документ рядом с подписью",
     L"Put the document beside its signature"},
    {0x7014, L"Подписан другой документ", L"Another document was signed",
     L"Найдите документ, к которому относится подпись", L"Find the document that the signature belongs to"},
    {0x7021, L"Документ или подпись изменены", L"The document or the signature was changed",
     L"Не пользуйтесь документом; попросите прислать его и подпись снова",
     L"Do not rely on the document; ask for it and the signature again"},
    {0x7022, L"Нет сертификата подписавшего", L"The signer's certificate is not at hand",
     L"Попросите сертификат и добавьте его в справочник", L"Ask for the certificate and add it to the store"},
    {0x7023, L"Сертификат выдан неизвестным центром", L"An unknown authority issued the certificate",
     L"Если центру можно доверять, добавьте его сертификат в справочник",
     L"If the authority can be trusted, add its certificate to the store"},
    {0x7024, L"Срок сертификата истёк", L"The certificate has expired",
     L"Попросите подписать документ действующим сертификатом", L"Ask for a signature with a valid certificate"},
    {0x7025, L"Срок сертификата не наступил", L"The certificate is not yet valid", L"Проверьте часы компьютера",
     L"Check the clock of this computer"},
    {0x7026, L"Сертификат отозван", L"The certificate is revoked",
     L"Не доверяйте подписи; спросите подписавшего другим путём",
     L"Do not trust the signature; ask the signer by other means"},
    {0x7027, L"Цепочка сертификатов не прошла проверку", L"The chain of certificates is broken",
     L"Сообщите администратору", L"Report it to the administrator"},
    {0x7028, L"Сертификат не предназначен для подписи", L"The certificate is not meant for signatures",
     L"Попросите подписать документ другим сертификатом", L"Ask for a signature with another certificate"},
    {0x702E, L"Неизвестный алгоритм", L"Unknown algorithm", L"Обновите криптографическую библиотеку",
     L"Update the engine"},
    {0x702F, L"Подписано вне срока действия ключа", L"Signed outside of the period of the key",
     L"Спросите подписавшего, когда он подписал документ", L"Ask the signer when the document was signed"},
    {0x7043, L"Список отзыва подделан", L"A revocation list is forged",
     L"Удалите список и получите его от центра (refresh-lists)",
     L"Remove the list and get the authority's (refresh-lists)"},
    {0x7049, L"Список отзыва непригоден", L"A revocation list cannot be used",
     L"Получите список от центра (refresh-lists)", L"Get the list from the authority (refresh-lists)"},
    {0x7060, L"Слабый алгоритм или короткий ключ", L"Weak algorithm or short key",
     L"Попросите в будущем подписывать более стойким ключом", L"Ask for a stronger key in future"},
    {0x7061, L"Списки отзыва не охватывают сертификат", L"The revocation lists do not cover the certificate",
     L"Обновите списки отзыва (refresh-lists)", L"Refresh the revocation lists (refresh-lists)"},
};

const Texts& Find(LONG code) {
  if (code == 0) return kGood;
  if (code == kVerifiedWithRemarks) return kOutdated;
  // Only the low half is the same in the status of a signature and in the failure of a call.
  for (const Texts& texts : kTexts) {
    if (texts.code == (code & 0xFFFF)) return texts;
  }
  return kUnknown;
}

Level LevelOf(LONG code) {
  switch (code) {
    case 0:
      return Level::kGood;
    case 0x702F:
    case 0x7060:
    case 0x7061:
    case kVerifiedWithRemarks:
      return Level::kRemark;
    default:
      return Level::kBad;
  }
}

}  // namespace

Verdict Explain(LONG code, Language language) {
  const Texts& texts = Find(code);
  return {LevelOf(texts.code), Choose(language, texts.russianWrong, texts.englishWrong),
          Choose(language, texts.russianAdvice, texts.englishAdvice)};
}
