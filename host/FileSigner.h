#pragma once

// The signature test: does the system's trust provider accept a file's signature, and does a given name
// stand on its certificate chain?

#include <cstdint>

namespace Cmm {

struct TrustApi;  // host/TrustApi.h

// True when the file's signature is valid and `signer` occurs, case included, in the simple display name
// of some certificate of the signer's chain: the signing certificate or an issuer alike. A null `signer`
// stands for "Velm Communications, Inc."; an empty one accepts any certificate that has a name.
// Revocation is not checked. A null `filePath` gives false.
bool VerifyFileSigner(const wchar_t* filePath, const wchar_t* signer);

// The same for a file that the caller has opened, as 1 or 0; `file` may be null, and the test then runs
// on the name alone. `*status`, if `status` is not null, becomes the trust provider's result: 0 for a
// valid signature, whoever signed. A null `filePath` gives 0 and leaves `*status` alone.
int VerifyFileSignerByHandle(const wchar_t* filePath, void* file, const wchar_t* signer, uint32_t* status);

// VerifyFileSignerByHandle on other trust calls than the system's.
int VerifyFileSignerWith(const TrustApi& api, const wchar_t* filePath, void* file, const wchar_t* signer,
                         uint32_t* status);

}  // namespace Cmm
