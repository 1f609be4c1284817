// Certificates that the fake engine fills, and how the tests look at what the module makes of them.
#pragma once

#include "support/contract_test.h"

/// Every field filled, each with a value of its own.
fake::Certificate fullCertificate();
/// Only a subject.
fake::Certificate certificateOf(const std::string& subject);

/// The text of a string property.
template <class Interface>
std::wstring textOf(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
  Bstr value;
  EXPECT_OK((object->*get)(value.inOut()));
  EXPECT_FALSE(value.null());
  return value.text();
}

std::wstring subjectOf(ICertificate* certificate);

/// Checks every property of `certificate` against fullCertificate(), which `fields` describe.
void expectFullCertificate(ICertificate* certificate, int fields = 0x4007FFFF);
