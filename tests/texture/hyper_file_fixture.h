#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/container/hyper_file.h"
#include "texture/txl_builder.h"

/// A container with the ident "Test" that shows its counter.
class TestedFile : public PrivateHyperFile {
  public:
    [[nodiscard]] std::uint32_t counter() const { return counter_; }
    void set_counter(std::uint32_t value) { counter_ = value; }
    int OpenToRead(const std::string& path) {
        return Open(four_characters("Test"), path.c_str(), kReading, 0, 0);
    }
    int OpenToWrite(const std::string& path) {
        return Open(four_characters("Test"), path.c_str(), kWriting, 0, 1);
    }
};

/// A folder with one container file.
class HyperFile : public testing::Test {
  protected:
    static HyperBytes header() { return HyperBytes().Header("AVXR", "Test"); }
    std::string write(const HyperBytes& bytes) { return folder_.write("file", bytes.bytes()); }
    void open(const HyperBytes& bytes) { ASSERT_EQ(file_.OpenToRead(write(bytes)), 1); }

    TemporaryFolder folder_;
    TestedFile file_;
};

/// One value of every type, and the operation that reads it.
struct Typed {
    const char* name;
    std::string stored;
    std::function<int(PrivateHyperFile&)> read;
};

/// One of every type that can be read.
std::vector<Typed> typed_values();
