// SPDX-License-Identifier: Apache-2.0

#include "bench/BareClient.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <curl/curl.h>
#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

namespace orlix::bench {

namespace {

std::string pemOf(const std::string& derFile) {
  std::ifstream file(derFile, std::ios::binary);
  const std::string der((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
  const std::unique_ptr<X509, decltype(&X509_free)> certificate(
      d2i_X509(nullptr, &bytes, static_cast<long>(der.size())), X509_free);
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
  if (!certificate || PEM_write_bio_X509(memory.get(), certificate.get()) != 1) {
    throw std::runtime_error("no certificate in " + derFile);
  }
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<std::size_t>(size)};
}

std::size_t append(char* data, std::size_t size, std::size_t count, void* into) {
  static_cast<std::string*>(into)->append(data, size * count);
  return size * count;
}

}  // namespace

struct BareClient::Handle {
  CURL* curl = curl_easy_init();
  curl_slist* headers = nullptr;
  std::string answer;
  ~Handle() {
    curl_slist_free_all(headers);
    curl_easy_cleanup(curl);
  }
};

BareClient::BareClient(std::string base, const std::string& anchor, Roots roots)
    : handle_(std::make_unique<Handle>()), base_(std::move(base)) {
  std::string pem = pemOf(anchor);
  curl_blob blob{pem.data(), pem.size(), CURL_BLOB_COPY};
  curl_easy_setopt(handle_->curl, CURLOPT_CAINFO_BLOB, &blob);
  curl_easy_setopt(handle_->curl, CURLOPT_CAPATH,
                   roots == Roots::systemToo ? X509_get_default_cert_dir() : nullptr);
  curl_easy_setopt(handle_->curl, CURLOPT_WRITEFUNCTION, append);
  curl_easy_setopt(handle_->curl, CURLOPT_WRITEDATA, &handle_->answer);
  curl_easy_setopt(handle_->curl, CURLOPT_NOSIGNAL, 1L);
  setTokens("", "");
}

BareClient::~BareClient() = default;

void BareClient::setTokens(const std::string& first, const std::string& second) {
  curl_slist_free_all(handle_->headers);
  handle_->headers = curl_slist_append(nullptr, "Content-Type: application/json");
  if (!first.empty()) {
    handle_->headers = curl_slist_append(handle_->headers, ("x-session-token1: " + first).c_str());
    handle_->headers = curl_slist_append(handle_->headers, ("x-session-token2: " + second).c_str());
  }
  curl_easy_setopt(handle_->curl, CURLOPT_HTTPHEADER, handle_->headers);
}

std::string BareClient::post(const std::string& path, const std::string& body) {
  handle_->answer.clear();
  curl_easy_setopt(handle_->curl, CURLOPT_URL, (base_ + path).c_str());
  curl_easy_setopt(handle_->curl, CURLOPT_POSTFIELDSIZE_LARGE,
                   static_cast<curl_off_t>(body.size()));
  curl_easy_setopt(handle_->curl, CURLOPT_POSTFIELDS, body.data());
  const CURLcode code = curl_easy_perform(handle_->curl);
  long status = 0;
  curl_easy_getinfo(handle_->curl, CURLINFO_RESPONSE_CODE, &status);
  if (code != CURLE_OK || status != 200) {
    throw std::runtime_error("bare post to " + path + ": " + curl_easy_strerror(code) + ", " +
                             std::to_string(status) + " " + handle_->answer);
  }
  return handle_->answer;
}

}  // namespace orlix::bench
