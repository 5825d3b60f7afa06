// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/JsonDecoder.h"

#include <cstdint>
#include <utility>
#include <variant>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonNumber.h"

namespace orlix {

namespace {

using boost::json::error_code;
using boost::json::string_view;

/// Builds the value from the parser's events, like the JSON library's own handler, which however
/// keeps numbers only as doubles.
struct Builder {
  static constexpr std::size_t max_object_size = boost::json::object::max_size();
  static constexpr std::size_t max_array_size = boost::json::array::max_size();
  static constexpr std::size_t max_key_size = boost::json::string::max_size();
  static constexpr std::size_t max_string_size = boost::json::string::max_size();

  explicit Builder(boost::json::storage_ptr memory) : stack(std::move(memory)) {}

  bool on_document_begin(error_code&) { return true; }
  bool on_document_end(error_code&) { return true; }
  bool on_object_begin(error_code&) { return true; }
  bool on_object_end(std::size_t members, error_code&) {
    stack.push_object(members);
    return true;
  }
  bool on_array_begin(error_code&) { return true; }
  bool on_array_end(std::size_t elements, error_code&) {
    stack.push_array(elements);
    return true;
  }
  bool on_key_part(string_view part, std::size_t, error_code&) {
    stack.push_chars(part);
    return true;
  }
  bool on_key(string_view rest, std::size_t, error_code&) {
    stack.push_key(rest);
    return true;
  }
  bool on_string_part(string_view part, std::size_t, error_code&) {
    stack.push_chars(part);
    return true;
  }
  bool on_string(string_view rest, std::size_t, error_code&) {
    stack.push_string(rest);
    return true;
  }
  bool on_number_part(string_view, error_code&) { return true; }
  bool on_int64(std::int64_t number, string_view, error_code&) {
    stack.push_int64(number);
    return true;
  }
  bool on_uint64(std::uint64_t number, string_view, error_code&) {
    stack.push_uint64(number);
    return true;
  }
  /// `digits` holds the whole number, since the text is parsed in one piece.
  bool on_double(double, string_view digits, error_code&) {
    const auto number = keptNumber({digits.data(), digits.size()});
    if (const auto* integer = std::get_if<std::int64_t>(&number)) {
      stack.push_int64(*integer);
    } else {
      stack.push_double(std::get<double>(number));
    }
    return true;
  }
  bool on_bool(bool truth, error_code&) {
    stack.push_bool(truth);
    return true;
  }
  bool on_null(error_code&) {
    stack.push_null();
    return true;
  }
  bool on_comment_part(string_view, error_code&) { return true; }
  bool on_comment(string_view, error_code&) { return true; }

  boost::json::value_stack stack;
};

}  // namespace

boost::json::value decodeJson(ByteView data, std::size_t depthLimit, AnswerMemory& memory) {
  boost::json::parse_options options;
  options.max_depth = depthLimit;
  boost::json::basic_parser<Builder> parser(options, boost::json::storage_ptr(&memory));
  parser.handler().stack.reset(boost::json::storage_ptr(&memory));
  error_code error;
  const std::size_t read =
      parser.write_some(false, reinterpret_cast<const char*>(data.data()), data.size(), error);
  if (error || read < data.size()) {
    throw unreadableAnswer();
  }
  return parser.handler().stack.release();
}

}  // namespace orlix
