#pragma once

// The arguments and results of one call, as the log writes them.

#include <cstdint>
#include <utility>

#include "embedded/json_values.h"
#include "embedded/session.h"

namespace embedded {

/// Collects named values in order. A null pointer is written as null.
class CallValues {
  public:
    explicit CallValues(const Session& session) : session_(session) {}

    void json(const char* name, Json value) { values_[name] = std::move(value); }
    void integer(const char* name, std::int64_t value) { values_[name] = value; }
    void number(const char* name, double value) { values_[name] = json_number(value); }
    void flag(const char* name, A_Boolean value) { values_[name] = value; }
    void text(const char* name, const A_char* value) {
        values_[name] = value == nullptr ? Json() : json_text(value);
    }
    void text(const char* name, const A_UTF16Char* value) {
        values_[name] = value == nullptr ? Json() : json_text(Utf16View(value));
    }
    void time(const char* name, const A_Time* value) {
        values_[name] = value == nullptr ? Json() : json_time(*value);
    }
    void ratio(const char* name, const A_Ratio* value) {
        values_[name] = value == nullptr ? Json() : json_ratio(*value);
    }
    /// "item:3"; "foreign" for what is no handle of this host.
    void handle(const char* name, const void* value) {
        values_[name] = value == nullptr ? Json() : Json(session_.handles.text(value));
    }
    /// An address that means something to the bundle alone: whether there is one.
    void pointer(const char* name, const void* value) {
        values_[name] = value == nullptr ? Json() : Json(true);
    }

    /// An object, empty when nothing was collected.
    Json take() { return values_.is_null() ? Json::object() : std::move(values_); }

  private:
    const Session& session_;
    Json values_;  // null until there is a value
};

/// {"stream":"stream:7","value":..}: the value's members are those of the stream's shape.
Json json_stream_value(const Session& session, const AEGP_StreamValue* value);

}  // namespace embedded
