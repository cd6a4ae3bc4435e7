#pragma once

// The trust and certificate calls that the signature test makes, as a table: a system that accepts every
// intact signature can then still be made to answer anything.

#include <windows.h>
// After <windows.h>:
#include <softpub.h>
#include <wincrypt.h>
#include <wintrust.h>

namespace Cmm {

struct TrustApi {
  decltype(&WinVerifyTrust) verifyTrust = WinVerifyTrust;
  decltype(&WTHelperProvDataFromStateData) providerData = WTHelperProvDataFromStateData;
  decltype(&WTHelperGetProvSignerFromChain) chainSigner = WTHelperGetProvSignerFromChain;
  decltype(&WTHelperGetProvCertFromChain) chainCertificate = WTHelperGetProvCertFromChain;
  decltype(&CertGetNameStringW) certificateName = CertGetNameStringW;
};

}  // namespace Cmm
