#pragma once

#include <cstdint>

class PrivateString;

/// A reference to one code unit, as returned by `string[i]`: it converts to the unit and stores a unit that
/// is assigned to it. An index outside the string reads as 0 and ignores assignments. Points to the string
/// and must not outlive it.
class PChar {
  public:
    PChar(PrivateString* string, std::int32_t index) : string_(string), index_(index) {}
    PChar(const PChar&) = default;
    ~PChar() = default;

    /// Copies the unit, not the reference: `a[0] = b[1]` copies a unit from one string to the other.
    PChar& operator=(const PChar& other);
    PChar& operator=(std::uint16_t unit);

    operator std::uint16_t() const;

  private:
    PrivateString* string_;
    std::int32_t index_;  // -1 outside the string
};

/// The container's string type: a counted string of 16-bit code units without a terminator. Owns its buffer.
/// Operations that allocate return 1 on success; on failure they return 0 and leave the string empty.
class PrivateString {
  public:
    PrivateString() = default;
    explicit PrivateString(const char* text) { Set(text); }
    ~PrivateString();
    PrivateString(const PrivateString&) = delete;
    PrivateString& operator=(const PrivateString&) = delete;

    /// Length in code units.
    [[nodiscard]] std::int32_t GetLength() const { return length_; }

    /// Replaces the buffer by `n` uninitialised units. Fails for a negative count.
    int Init(std::int32_t n);

    /// Converts each byte to one unit, deliberately by sign extension: bytes 0x80 to 0xFF become units 0xFF80
    /// to 0xFFFF, as in existing files. Null gives the empty string.
    int Set(const char* text);

    PChar operator[](std::int32_t i);
    [[nodiscard]] std::uint16_t operator[](std::int32_t i) const;

    /// Copies the first min(length, n) units to `destination`.
    static void GetUcBlock(const PrivateString& string, std::uint16_t* destination, std::int32_t n);

    /// Replaces the contents by `n` units.
    static int SetUcBlock(PrivateString& string, const std::uint16_t* source, std::int32_t n);

    /// Makes the string empty without releasing its buffer. Only for PrivateHyperFile::ReadString, which says
    /// why.
    void Abandon();

  protected:
    std::uint16_t* units_ = nullptr;
    std::int32_t length_ = 0;    // code units
    std::int32_t capacity_ = 0;  // code units

  private:
    friend class PChar;
    void Release();
};
