#include "sdk/AudioDeviceTable.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <span>

namespace Velm3rdSDK {
namespace {

std::span<DeviceRecord> RecordsInUse(DeviceTableLayout& table) {
  return {table.records, std::min(table.count, DeviceTableLayout::kMaxDevices)};
}

DeviceRecord* FindByName(DeviceTableLayout& table, const wchar_t* name) {
  for (DeviceRecord& record : RecordsInUse(table))
    if (std::wcsncmp(record.name, name, kDeviceTextChars) == 0) return &record;
  return nullptr;
}

}  // namespace

void CopyDeviceText(wchar_t (&target)[kDeviceTextChars], const wchar_t* text) {
  std::fill(std::begin(target), std::end(target), L'\0');
  if (text) std::copy_n(text, wcsnlen(text, kDeviceTextChars - 1), target);
}

void AddDevice(DeviceTableLayout& table, const DeviceRecord& record) {
  if (FindByName(table, record.name)) return;
  if (DeviceRecord* free = FindByName(table, L"")) {
    *free = record;
    return;
  }
  if (table.count >= DeviceTableLayout::kMaxDevices) return;
  table.records[table.count] = record;
  table.count += 1;
}

void RemoveDevice(DeviceTableLayout& table, const wchar_t* name) {
  wchar_t key[kDeviceTextChars];
  CopyDeviceText(key, name);
  if (DeviceRecord* record = FindByName(table, key)) *record = DeviceRecord();
}

void CAudioDeviceTable::OpenTable() {
  m_pView = nullptr;
  m_hMapping = OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, kMappingName);
  bool created = false;
  if (!m_hMapping) {
    m_hMapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                    sizeof(DeviceTableLayout), kMappingName);
    created = GetLastError() != ERROR_ALREADY_EXISTS;
  }
  if (!m_hMapping) return;
  // Asking for the whole size refuses a mapping of that name that is too short to be the table.
  m_pView = static_cast<DeviceTableLayout*>(
      MapViewOfFile(m_hMapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(DeviceTableLayout)));
  if (!m_pView) return;
  if (created) m_pView->count = 0;
}

void CAudioDeviceTable::AddDevice(const DeviceRecord& record) {
  if (m_pView) Velm3rdSDK::AddDevice(*m_pView, record);
}

void CAudioDeviceTable::RemoveDevice(const wchar_t* name) {
  if (m_pView) Velm3rdSDK::RemoveDevice(*m_pView, name);
}

}  // namespace Velm3rdSDK
