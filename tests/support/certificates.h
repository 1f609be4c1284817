// Certificates that the fake engine fills, and how the tests look at what the module makes of them.
#pragma once

#include "support/contract_test.h"

/// Every field filled, each with a value of its own.
fake::Certificate FullCertificate();
/// Only a subject.
fake::Certificate CertificateOf(const std::string& subject);

/// The text of a string property.
template <class Interface>
std::wstring TextOf(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
  Bstr value;
  EXPECT_OK((object->*get)(value.inOut()));
  EXPECT_FALSE(value.null());
  return value.text();
}

std::wstring SubjectOf(ICertificate* certificate);

/// Checks every property of `certificate` against FullCertificate(), which `fields` describe.
void ExpectFullCertificate(ICertificate* certificate, int fields = 0x4007FFFF);
