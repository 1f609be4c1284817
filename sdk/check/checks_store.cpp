#include "checks.h"
#include "engine/flags.h"

namespace check {
namespace {

/// Adds a check that changes the store.
template <class Work>
void CheckChange(Kit& kit, const char* what, const char* expected, Work work) {
  kit.check(what, expected, [&] {
    Needs(kit.options.mayChange, "--change-store");
    const Session session = kit.open();
    work(session);
  });
}

Bytes ExportStore(Kit& kit, EngineSession session) {
  In<SignParamRecord> param({engine::kExportAsn1, nullptr});
  Out<DataBlob_t> out;
  Succeeds("ExportMem", kit.engine.QUIVO_ExportMem(session, param.get(), out.get()));
  return kit.take(session, *out, "ExportMem");
}

/// Shows encoded bytes; somebody closes the window.
void CheckWindow(Kit& kit, const char* name, decltype(&QUIVO_ShowCertificate) show, const Bytes& encoded) {
  kit.check(std::string(name) + " shows a window", "0, once it is closed", [&] {
    Needs(kit.options.mayShow, "--windows");
    const Session session = kit.open();
    InBytes bytes(encoded);
    Succeeds(name, show(session, bytes.blob()));
  });
}

}  // namespace

void CheckStore(Kit& kit) {
  const Engine& e = kit.engine;
  const Bytes own = kit.options.mayShow ? kit.ownCertificate() : Bytes();
  CheckWindow(kit, "ShowCertificate", e.QUIVO_ShowCertificate, own);
  CheckWindow(kit, "ShowCrl", e.QUIVO_ShowCrl, kit.read(kit.options.crl));
  kit.check("ExportMem exports the store", "bytes", [&] {
    const Session session = kit.open();
    Expect(!ExportStore(kit, session).empty(), "no bytes");
  });
  kit.check("ExportFile exports the store", "a file with bytes", [&] {
    const Session session = kit.open();
    In<SignParamRecord> param({engine::kExportAsn1, nullptr});
    InText file(kit.path("export.p7b"));
    Succeeds("ExportFile", e.QUIVO_ExportFile(session, param.get(), file.get()));
    Expect(!kit.read(file.get()).empty(), "no bytes");
  });
  CheckChange(kit, "AddCertificate adds the own certificate", "0", [&](const Session& session) {
    In<SignParamRecord> addition({0, nullptr});
    InBytes encoded(kit.ownCertificate());
    Succeeds("AddCertificate", e.QUIVO_AddCertificate(session, addition.get(), encoded.blob()));
  });
  CheckChange(kit, "AddCRL adds a revocation list", "0", [&](const Session& session) {
    Needs(!kit.options.crl.empty(), "--crl");
    In<SignParamRecord> addition({0, nullptr});
    InBytes encoded(kit.read(kit.options.crl));
    Succeeds("AddCRL", e.QUIVO_AddCRL(session, addition.get(), encoded.blob()));
  });
  CheckChange(kit, "ImportMem imports a certificate", "0", [&](const Session& session) {
    In<SignParamRecord> param({engine::kImportCertificate, nullptr});
    InBytes encoded(kit.ownCertificate());
    Succeeds("ImportMem", e.QUIVO_ImportMem(session, param.get(), encoded.blob()));
  });
  CheckChange(kit, "ImportFile imports a certificate", "0", [&](const Session& session) {
    In<SignParamRecord> param({engine::kImportCertificate, nullptr});
    InText file(kit.write("own.cer", kit.ownCertificate()));
    Succeeds("ImportFile", e.QUIVO_ImportFile(session, param.get(), file.get()));
  });
  CheckChange(kit, "AddCertificate and AddCRL refuse other bytes", "a failure", [&](const Session& session) {
    In<SignParamRecord> addition({0, nullptr});
    InBytes garbage(Payload(100));
    Fails("AddCertificate", e.QUIVO_AddCertificate(session, addition.get(), garbage.blob()));
    Fails("AddCRL", e.QUIVO_AddCRL(session, addition.get(), garbage.blob()));
  });
  CheckChange(kit, "CreateXmlRequest makes a request for the own key", "XML", [&](const Session& session) {
    In<CertificateRecord> wanted(CertificateRecord{});
    Out<DataBlob_t> request;
    Succeeds("CreateXmlRequest",
             e.QUIVO_CreateXmlRequest(session, engine::kXmlRequestDoNotGenerate, wanted.get(), request.get()));
    const Bytes xml = kit.take(session, *request, "CreateXmlRequest");
    Expect(!xml.empty() && xml[0] == '<', "something else");
  });
}

}  // namespace check
