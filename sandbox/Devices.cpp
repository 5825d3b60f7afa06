// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Devices.h"

#include "sandbox/Bounds.h"

namespace orlix::sandbox {

Devices::Devices(Database& database) : database_(database) {
  database_.run(
      "CREATE TABLE IF NOT EXISTS devices (serial TEXT PRIMARY KEY, token TEXT NOT NULL, wallet "
      "TEXT "
      "NOT NULL, next_start TEXT NOT NULL)");
  database_.run(
      "CREATE TABLE IF NOT EXISTS sms (serial TEXT PRIMARY KEY, msisdn TEXT NOT NULL, code TEXT "
      "NOT "
      "NULL, wrong_tries INTEGER NOT NULL)");
}

std::optional<Device> Devices::find(const std::string& serial) const {
  const auto rows = database_.ask(
      "SELECT serial, token, wallet, next_start FROM devices WHERE serial = ?", {serial});
  if (rows.empty()) return std::nullopt;
  const auto& row = rows.front();
  return Device{row.text(0), row.text(1), row.text(2), row.text(3)};
}

std::vector<Device> Devices::list(std::int64_t most) const {
  std::vector<Device> out;
  for (const auto& row : database_.ask(
           "SELECT serial, token, wallet, next_start FROM devices ORDER BY rowid DESC LIMIT ?",
           {most})) {
    out.push_back({row.text(0), row.text(1), row.text(2), row.text(3)});
  }
  return out;
}

void Devices::put(const Device& device) {
  database_.run("INSERT OR REPLACE INTO devices VALUES (?, ?, ?, ?)",
                {device.serial, device.token, device.wallet, device.nextStart});
  // A device that is put again comes last, so these have been away for longest.
  for (const auto& row :
       database_.ask("SELECT serial FROM devices ORDER BY rowid DESC LIMIT -1 OFFSET ?",
                     {std::int64_t{kMostKept}})) {
    remove(row.text(0));
  }
}

void Devices::remove(const std::string& serial) {
  database_.run("DELETE FROM devices WHERE serial = ?", {serial});
  dropSms(serial);
}

std::optional<PendingSms> Devices::pendingSms(const std::string& serial) const {
  const auto rows =
      database_.ask("SELECT msisdn, code, wrong_tries FROM sms WHERE serial = ?", {serial});
  if (rows.empty()) return std::nullopt;
  return PendingSms{rows.front().text(0), rows.front().text(1), rows.front().number(2)};
}

void Devices::putSms(const std::string& serial, const PendingSms& sms) {
  database_.run("INSERT OR REPLACE INTO sms VALUES (?, ?, ?, ?)",
                {serial, sms.msisdn, sms.code, sms.wrongTries});
}

void Devices::dropSms(const std::string& serial) {
  database_.run("DELETE FROM sms WHERE serial = ?", {serial});
}

}  // namespace orlix::sandbox
