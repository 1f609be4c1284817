#include "attack/calls/engine_replies.h"

namespace {

constexpr uint32_t kCodes[]{1,          2,          5,          14,         87,         0x7FFFFFFF,
                            0xFFFFFFFF, 0xE0700019, 0xE0690100, 0xE0680001, 0x80070005, 0x80004005};

constexpr int32_t kNoSession = 6;
const std::set<std::string> kWithoutSession{"QUIVO_Initialize", "QUIVO_InitializeEx", "QUIVO_InitMinimal",
                                            "QUIVO_GetErrorText", "QUIVO_EncodeMem"};

}  // namespace

int32_t EngineReplies::code() {
  if (random_.chance(65)) return 0;
  const auto code = static_cast<int32_t>(kCodes[random_.below(std::size(kCodes))]);
  codes_.insert(code);
  return code;
}

fake::Text EngineReplies::text() {
  if (random_.chance(25)) return {};
  if (random_.oneIn(300)) return std::string(100000, 'T');
  std::string text(random_.below(40), ' ');
  for (char& character : text) character = static_cast<char>(1 + random_.below(255));
  return text;
}

fake::Bytes EngineReplies::bytes() {
  fake::Bytes bytes(random_.oneIn(300) ? 200000 : random_.of({0u, 1u, 20u, 32u, random_.below(600)}));
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_.next());
  return bytes;
}

fake::Certificate EngineReplies::certificate() {
  fake::Certificate made;
  const auto word = [&] { return static_cast<uint32_t>(random_.next()); };
  made.fields = random_.chance(50) ? 0x4007FFFF : word();
  for (fake::Text* field : {&made.issuer, &made.serialNumber, &made.subject, &made.algorithm, &made.issuerUID,
                            &made.subjectUID, &made.keyId})
    *field = text();
  for (uint32_t* field :
       {&made.notBefore, &made.notAfter, &made.keyUsage, &made.notBeforePrivate, &made.notAfterPrivate})
    *field = word();
  if (random_.chance(50)) {
    for (fake::Text& name : made.issuerAltName) name = text();
    for (fake::Text& name : made.subjectAltName) name = text();
  }
  for (uint32_t i = random_.below(3); i > 0; --i)
    made.policies.push_back({text(), text(), static_cast<int32_t>(word()), text()});
  for (uint32_t i = random_.below(3); i > 0; --i) made.extKeyUsage.push_back(random_.chance(70) ? "1.2.3.4" : text());
  for (uint32_t i = random_.below(3); i > 0; --i)
    made.extensions.push_back({text(), static_cast<int32_t>(word()), static_cast<int32_t>(word()), bytes()});
  made.certEncoded = bytes();
  made.certHash = bytes();
  return made;
}

fake::Reply EngineReplies::replyTo(const fake::Call& call) {
  fake::Reply reply;
  reply.result = code();
  if (!kWithoutSession.contains(call.function) && call.null(0)) {
    reply.result = kNoSession;
    codes_.insert(kNoSession);
    reply.writesNothing = true;
    return reply;
  }
  // A failing engine may have written its outputs or not; a succeeding one has.
  reply.writesNothing = reply.result != 0 && random_.chance(50);
  reply.output = bytes();
  reply.text = text().value_or("");
  if (call.function == "QUIVO_EncodeMem") reply.text.assign((call.value(2) + 2) / 3 * 4, 'A');
  for (uint32_t i = random_.below(4); i > 0; --i) {
    auto& signature = reply.signatures.emplace_back(fake::Signature{code(), static_cast<uint32_t>(random_.next()), {}});
    if (random_.chance(70)) signature.cert = certificate();
  }
  if (call.function == "QUIVO_FindCert") {
    for (uint32_t i = random_.of({0u, 1u, 1u, 2u, 3u}); i > 0; --i) reply.certificates.push_back(certificate());
    if (reply.certificates.empty() && random_.chance(50)) reply.findCount = -1;
  }
  if (random_.chance(70)) reply.certificate = certificate();
  reply.status = code();
  reply.signatureCount = random_.of({0u, 1u, 2u, 0xFFFFFFFFu});
  reply.left = random_.of({0, 1, -1, 0x7FFFFFFF});
  if (random_.chance(4)) reply.during = during_;
  return reply;
}
