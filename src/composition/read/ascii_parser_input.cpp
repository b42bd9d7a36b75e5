#include "composition/read/ascii_parser.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "composition/model/heap_text.h"
#include "composition/read/read_report.h"

// The parser's file and the blocks read from it. ascii_parser.cpp turns the bytes into tokens.

ASCIIParser::ASCIIParser() : memory_(new_text(kKeptBytes + kJoinedBytes + kBlockBytes + 2)) {
    if (memory_ != nullptr) {
        buffer = memory_ + kKeptBytes + kJoinedBytes;
        // Code that loads eight bytes at a time reads beyond the ends of a block, so every byte is set.
        std::memset(memory_, 0, kKeptBytes + kJoinedBytes + kBlockBytes + 2);
    }
    const char identifier_characters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    for (const char* c = identifier_characters; *c != '\0'; ++c) {
        charClass[static_cast<unsigned char>(*c)] = 1;
    }
    file = AllocBaseFile();
}

ASCIIParser::~ASCIIParser() {
    if (file != nullptr) {
        file->Close();
    }
    if (textOnHeap != 0) {
        delete[] text;
    }
    delete[] memory_;
    FreeBaseFile(file);
}

A_long ASCIIParser::Init(const Filename& name, int open_flag, int eol_is_token) {
    constexpr A_long kCannotRead = 4;
    filename = name;
    openFlag = open_flag;
    eolIsToken = eol_is_token;
    curChar = 0;
    lastEol = 0;
    A_long result = 0;
    if (file == nullptr || buffer == nullptr) {
        fail_at(*this, ReadErrorCode::out_of_memory, {}, "memory for reading the file", "none");
        result = kCannotRead;
    } else if (file->Open(filename, 1, openFlag); file->GetError() != 0) {
        fail_at(*this, ReadErrorCode::cannot_open, {}, "a regular file that may be read", "none");
        result = kCannotRead;
    } else if (fileLength = bytesLeft = file->GetLength(); fileLength < 1) {
        file->Close();
        const bool empty = fileLength == 0;
        fail_at(*this, empty ? ReadErrorCode::empty_file : ReadErrorCode::file_too_large, {},
                "a file of less than 2 GiB that is not empty",
                empty ? "an empty file" : "a file of 2 GiB or more, or of no known length",
                empty ? nullptr : &limits::kCompositionFile);
        result = kCannotRead;
    } else {
        nextsym(0);
    }
    charCount = 0;
    return result;
}

void ASCIIParser::Refill() {
    if (bytesLeft < 1) {
        status = kStatusEndOfInput;
        return;
    }
    bufCount = std::min(bytesLeft, kBlockBytes);
    bytesLeft -= bufCount;
    block_begin_ = bufPos = buffer;
    if (failed_early_ || !ReadBlock(bufCount)) {
        status = kStatusReadFailed;
    }
}

// Reads `bytes` into the buffer. Returns false when the file has become shorter or its medium fails; missing
// bytes read as zero.
bool ASCIIParser::ReadBlock(A_long bytes) {
    const A_long bytes_read = std::max(file->ReadBytes(buffer, bytes, 0), A_long{0});
    if (bytes_read < bytes) {
        std::memset(buffer + bytes_read, 0, static_cast<std::size_t>(bytes - bytes_read));
        return false;
    }
    return true;
}

// Moves what is left of this block to the room before the buffer and reads the next block after it, so that
// both are one text. Call only where reading will continue beyond this block in any case: the next block is
// then read a little earlier, and nothing else differs. Returns false when there is no room or no next block.
bool ASCIIParser::JoinNextBlock() {
    if (status != 0 || bytesLeft < 1 || failed_early_ || bufCount > kJoinedBytes ||
        bufPos - block_begin_ < kKeptBytes) {
        return false;
    }
    const A_long bytes = std::min(bytesLeft, kBlockBytes);
    const char* const left = bufPos;
    bufPos = buffer - bufCount;
    char* const begin = bufPos - kKeptBytes;
    std::memmove(begin, left - kKeptBytes, static_cast<std::size_t>(kKeptBytes + bufCount));
    block_begin_ = begin;
    if (ReadBlock(bytes)) {
        bytesLeft -= bytes;
        bufCount += bytes;
    } else {
        failed_early_ = true;  // Refill reports it when the block's turn comes
    }
    return true;
}
