// pkiobj: the older, file-oriented object. It has its own session and recipients, and reports to
// the user in message boxes and a results sheet.
#pragma once

#include "com/object.h"
#include "com/ref.h"
#include "engine/session_owner.h"
#include "legacy/addresses.h"
#include "legacy/recipient_list.h"
#include "quivocom.h"

class pkiobj : public com::Object<Ipkiobj> {
 public:
  /// Gives the recipients back, like FreeRecipCerts. The session stays open: closing it is the client's, with Uninit.
  ~pkiobj() = default;

  // Session (pkiobj_session.cpp).
  STDMETHODIMP Init(BSTR profile) override;
  STDMETHODIMP Uninit() override;
  STDMETHODIMP IsSigned(BSTR fname) override;

  // Recipients of Encrypt and SignAndEncrypt (pkiobj_recipients.cpp).
  STDMETHODIMP SetRecipients(BSTR addresses) override;
  STDMETHODIMP AddRecipDERCert(BSTR cert) override;
  STDMETHODIMP FreeRecipCerts() override;

  // Files (pkiobj_files.cpp).
  STDMETHODIMP Sign(BSTR fname_in, BSTR fname_out, LONG bDetached) override;
  STDMETHODIMP Verify(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Encrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Unencrypt(BSTR fname_in, BSTR fname_out, LONG bShowResult) override;
  STDMETHODIMP SignAndEncrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP VerifyAndUnencrypt(BSTR fname_in, BSTR fname_out) override;

 private:
  /// A method in progress: until it ends, the object lives and the session with which the method began stays open,
  /// whatever calls arrive while it shows a window or while the engine works for it.
  class Call {
   public:
    explicit Call(pkiobj& object) : object_(&object), use_(object.session_) {}

    EngineSession session() const { return use_; }
    /// False once a nested call has closed the session or replaced it.
    bool isCurrent() const { return use_.isCurrent(); }

   private:
    const com::Ref<Ipkiobj> object_;
    const engine::SessionUse use_;
  };

  bool takesRecipients(const Call& call) const { return call.isCurrent() && !recipients_.isReleasing(); }
  HRESULT takeRecipients(const Call& call, CertificateRecord* records, int32_t count);
  HRESULT takeFound(const Call& call, const FindResultRecord& found);
  HRESULT takeRecipientsOf(const Call& call, const legacy::RecipientAddress& address);
  HRESULT takeSelected(const Call& call);

  /// What the last opening of a session returned; outlives the session.
  int32_t initResult_ = 0;
  engine::SessionOwner session_;
  legacy::RecipientList recipients_;
};
