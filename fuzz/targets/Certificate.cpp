// SPDX-License-Identifier: Apache-2.0

// Certificates in DER form. An input is one.

#include <algorithm>
#include <cstdlib>
#include <string>

#include <openssl/err.h>
#include <openssl/x509.h>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/posix/SystemTrust.h"

namespace orlix::fuzz {

namespace {

Bytes derOf(X509* certificate) {
  unsigned char* bytes = nullptr;
  const int size = i2d_X509(certificate, &bytes);
  check(size > 0, "what was read can be written");
  Bytes der(bytes, bytes + size);
  OPENSSL_free(bytes);
  return der;
}

/// A stranger's certificate vouches for nothing, whatever it says of itself, and the log can say
/// why.
void isRefused(ByteView der) {
  std::string reason;
  const Bytes leaf(der.begin(), der.end());
  check(!verifyServerChain({leaf, leaf}, "localhost", {}, reason), "a stranger is not trusted");
  check(!reason.empty() && isUtf8(reason) &&
            std::none_of(reason.begin(), reason.end(),
                         [](char c) { return static_cast<unsigned char>(c) < ' '; }),
        "the reason is one line of text");
}

}  // namespace

void certificate(ByteView input) {
  // The machine's own roots would make the result depend on the machine.
  static const bool withoutRoots =
      setenv("SSL_CERT_FILE", "/dev/null", 1) + setenv("SSL_CERT_DIR", "/dev/null", 1) == 0;
  check(withoutRoots, "the environment can be set");
  const CertificatePointer read = certificateFromDer(input);
  check(ERR_peek_error() == 0, "no error is left behind for the next call of OpenSSL");
  if (read) {
    const Bytes der = derOf(read.get());
    check(der.size() <= input.size(), "nothing is added");
    const CertificatePointer again = certificateFromDer(der);
    check(again && X509_cmp(read.get(), again.get()) == 0, "a certificate reads back");
  }
  isRefused(input);
}

}  // namespace orlix::fuzz
