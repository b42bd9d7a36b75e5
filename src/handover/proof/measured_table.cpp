#include "handover/proof/measured_table.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace proof {
namespace {

using Cells = std::span<const std::string_view>;

// The script writes rows of at most seven columns.
constexpr std::size_t kMostColumns = 7;
constexpr std::size_t kMostQuoted = 40;
constexpr std::size_t kMostNotes = 1000;
constexpr std::size_t kTrialPoints = 2;

constexpr std::array<std::string_view, 4> kTrialNames = {"aspect", "bank-aimed", "bank-one-node",
                                                         "new-camera"};
constexpr std::array<std::string_view, 5> kColorNames = {"normal-partial", "add-opaque", "add-partial",
                                                         "multiply-partial", "texture"};

// Of any bytes, short enough for a message.
std::string shown(std::string_view cell) {
    std::string text = "\"";
    for (const char c : cell.substr(0, kMostQuoted)) {
        text += c >= ' ' && c <= '~' ? c : '?';
    }
    return text + (cell.size() > kMostQuoted ? "...\"" : "\"");
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// A whole number of at most nine digits.
std::optional<std::size_t> whole_number(std::string_view cell) {
    constexpr std::size_t kMostDigits = 9;
    if (cell.empty() || cell.size() > kMostDigits || !std::all_of(cell.begin(), cell.end(), is_digit)) {
        return std::nullopt;
    }
    std::size_t number = 0;
    for (const char c : cell) {
        number = number * 10 + static_cast<std::size_t>(c - '0');
    }
    return number;
}

// A number as JavaScript writes it: 12, -0.5, 1e-7, 1.5e+21. Right to the last digits, which is enough for
// pixels; the C++ library's own reader is not there on every system. Nothing for any other text.
std::optional<double> decimal_number(std::string_view cell) {
    std::size_t at = !cell.empty() && cell[0] == '-' ? 1 : 0;
    double digits = 0;
    int exponent = 0;
    std::size_t count = 0;
    bool after_point = false;
    for (; at < cell.size() && (is_digit(cell[at]) || (cell[at] == '.' && !after_point)); ++at) {
        if (cell[at] == '.') {
            after_point = true;
            continue;
        }
        digits = digits * 10 + (cell[at] - '0');
        exponent -= after_point ? 1 : 0;
        ++count;
    }
    constexpr std::size_t kMostDigits = 40;
    if (count == 0 || count > kMostDigits || (at > 0 && cell[at - 1] == '.')) {
        return std::nullopt;
    }
    if (at < cell.size() && cell[at] == 'e') {
        ++at;
        const bool below = at < cell.size() && cell[at] == '-';
        at += at < cell.size() && (cell[at] == '-' || cell[at] == '+') ? 1 : 0;
        const auto power = whole_number(cell.substr(at));
        constexpr std::size_t kMostPower = 308;
        if (!power || *power > kMostPower) {
            return std::nullopt;
        }
        exponent += below ? -static_cast<int>(*power) : static_cast<int>(*power);
        at = cell.size();
    }
    const double number = digits * std::pow(10.0, exponent);
    if (at != cell.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return cell[0] == '-' ? -number : number;
}

class TableReader {
  public:
    explicit TableReader(std::string_view text) : text_(text) {}

    std::variant<MeasuredTable, TableRefusal> read() {
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        if (text_.size() > kMostTableBytes) {
            return TableRefusal{0, "it has more than " + std::to_string(kMostTableBytes) +
                                       " bytes, and such tables have less"};
        }
        if (text_.starts_with(kMark)) {
            text_.remove_prefix(kMark.size());
        }
        while (!text_.empty() && !refusal_) {
            ++line_;
            read_line(next_line());
        }
        if (!refusal_ && !ended_) {
            refuse(line_ == 0
                       ? "it is empty"
                       : "it ends here without its last row \"end\": the table was cut, or After Effects "
                         "was stopped");
        }
        if (refusal_) {
            return *refusal_;
        }
        return std::move(table_);
    }

  private:
    void refuse(std::string reason) {
        if (!refusal_) {
            refusal_ = TableRefusal{line_, std::move(reason)};
        }
    }

    std::string_view next_line() {
        const std::size_t end = text_.find_first_of("\r\n");
        const std::string_view line = text_.substr(0, end);
        text_.remove_prefix(line.size());
        text_.remove_prefix(text_.starts_with("\r\n") ? 2 : text_.empty() ? 0 : 1);
        return line;
    }

    void read_line(std::string_view line) {
        std::array<std::string_view, kMostColumns> cells;
        std::size_t count = 0;
        for (std::string_view rest = line;;) {
            const std::size_t tab = rest.find('\t');
            if (count == cells.size()) {
                refuse("it has more than " + std::to_string(kMostColumns) + " columns");
                return;
            }
            cells[count++] = rest.substr(0, tab);
            if (tab == std::string_view::npos) {
                break;
            }
            rest.remove_prefix(tab + 1);
        }
        if (ended_) {
            if (!line.empty()) {
                refuse("there is more after the last row \"end\"");
            }
            return;
        }
        read_row(cells[0], Cells(cells.data() + 1, count - 1));
    }

    void read_row(std::string_view kind, Cells cells) {
        constexpr std::array<std::string_view, 4> kHead = {"vxr-measured", "scene", "asked", "host"};
        if (line_ <= kHead.size()) {
            if (kind != kHead[line_ - 1]) {
                refuse(line_ == 1
                           ? "it is no table of a script of vxr proof: the first row is not \"vxr-measured\""
                           : "the row is " + shown(kind) + " and not \"" + std::string(kHead[line_ - 1]) +
                                 '"');
                return;
            }
            read_head(cells);
        } else if (kind == "point") {
            read_point(cells);
        } else if (kind == "trial") {
            read_trial(cells);
        } else if (kind == "color") {
            read_color(cells);
        } else if (kind == "note") {
            if (has_columns(cells, 1) && table_.notes.size() < kMostNotes) {
                const std::string quoted = printable_of(cells[0]);
                table_.notes.push_back(quoted);
            }
        } else if (kind == "end") {
            read_end(cells);
        } else {
            refuse("there is no row " + shown(kind));
        }
    }

    static std::string printable_of(std::string_view cell) {
        std::string text(cell);
        std::replace_if(
            text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
        return text;
    }

    bool has_columns(Cells cells, std::size_t count) {
        if (cells.size() != count) {
            refuse("it has " + std::to_string(cells.size() + 1) + " columns instead of " +
                   std::to_string(count + 1));
        }
        return cells.size() == count;
    }

    void read_head(Cells cells) {
        constexpr std::size_t kHostColumns = 3;
        if (!has_columns(cells, line_ == 4 ? kHostColumns : 1)) {
            return;
        }
        switch (line_) {
            case 1:
                if (cells[0] != "1") {
                    refuse("this is version " + shown(cells[0]) +
                           " of such tables, and only 1 is known here");
                }
                break;
            case 2:
                table_.scene = printable_of(cells[0]);
                break;
            case 3:
                table_.asked = printable_of(cells[0]);
                break;
            default:
                read_host(cells);
        }
    }

    void read_host(Cells cells) {
        table_.version = printable_of(cells[0].substr(0, kMostQuoted));
        if (cells[1] != "-") {
            const auto bits = whole_number(cells[1]);
            if (!bits || (*bits != 8 && *bits != 16 && *bits != 32)) {
                refuse("the bits of a channel are " + shown(cells[1]) + " and not 8, 16 or 32");
                return;
            }
            table_.bits = static_cast<int>(*bits);
        }
        if (cells[2] == "0" || cells[2] == "1") {
            table_.linear = cells[2] == "1";
        } else if (cells[2] != "-") {
            refuse("linear blending is " + shown(cells[2]) + " and not 0, 1 or -");
        }
    }

    std::size_t index(std::string_view cell, const char* what) {
        const auto number = whole_number(cell);
        if (!number) {
            refuse("the " + std::string(what) + " is " + shown(cell) + " and no number from 0");
        }
        return number.value_or(0);
    }

    // The numbers of a row; nothing if any of them is "-".
    template <std::size_t Count>
    std::optional<std::array<double, Count>> numbers(Cells cells) {
        std::array<double, Count> values{};
        bool all = true;
        for (std::size_t i = 0; i < Count; ++i) {
            const auto value = decimal_number(cells[i]);
            if (!value && cells[i] != "-") {
                refuse(shown(cells[i]) +
                       " is no number; \"-\" stands for one that After Effects did not give");
            }
            values[i] = value.value_or(0);
            all = all && value.has_value();
        }
        return all ? std::optional(values) : std::nullopt;
    }

    template <std::size_t Count>
    static bool is_one_of(std::string_view name, const std::array<std::string_view, Count>& names) {
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    void refuse_again(std::size_t first_line) {
        refuse("the same row is on line " + std::to_string(first_line));
    }

    void read_point(Cells cells) {
        constexpr std::size_t kColumns = 6;
        if (!has_columns(cells, kColumns)) {
            return;
        }
        if (cells[0] != "corrected" && cells[0] != "imported") {
            refuse("the project is " + shown(cells[0]) + " and neither \"corrected\" nor \"imported\"");
            return;
        }
        const MeasuredPlace place{cells[0] == "corrected", index(cells[1], "camera"),
                                  index(cells[2], "moment"), index(cells[3], "point")};
        const auto [row, is_new] =
            table_.points.try_emplace(place, TableRow<MeasuredPixels>{numbers<2>(cells.subspan(4)), line_});
        if (!is_new) {
            refuse_again(row->second.line);
        }
    }

    void read_trial(Cells cells) {
        constexpr std::size_t kColumns = 4;
        if (!has_columns(cells, kColumns)) {
            return;
        }
        if (!is_one_of(cells[0], kTrialNames)) {
            refuse("there is no trial " + shown(cells[0]));
            return;
        }
        const std::size_t point = index(cells[1], "point");
        if (point >= kTrialPoints) {
            refuse("a trial has the points 0 and 1, and no point " + shown(cells[1]));
            return;
        }
        const auto [row, is_new] = table_.trials[std::string(cells[0])].try_emplace(
            point, TableRow<MeasuredPixels>{numbers<2>(cells.subspan(2)), line_});
        if (!is_new) {
            refuse_again(row->second.line);
        }
    }

    void read_color(Cells cells) {
        constexpr std::size_t kColumns = 5;
        if (!has_columns(cells, kColumns)) {
            return;
        }
        if (!is_one_of(cells[0], kColorNames)) {
            refuse("there are no colours of " + shown(cells[0]));
            return;
        }
        if (cells[1] != "black" && cells[1] != "white") {
            refuse("the ground is " + shown(cells[1]) + " and neither \"black\" nor \"white\"");
            return;
        }
        auto& row = table_.colors[std::string(cells[0])][cells[1] == "white" ? 1 : 0];
        if (row) {
            refuse_again(row->line);
            return;
        }
        row = TableRow<MeasuredColor>{numbers<3>(cells.subspan(2)), line_};
    }

    void read_end(Cells cells) {
        if (!has_columns(cells, 1)) {
            return;
        }
        if (whole_number(cells[0]) != line_ - 1) {
            refuse("there should be " + shown(cells[0]) + " lines before this one, and there are " +
                   std::to_string(line_ - 1));
        }
        ended_ = true;
    }

    std::string_view text_;
    std::size_t line_ = 0;
    bool ended_ = false;
    MeasuredTable table_;
    std::optional<TableRefusal> refusal_;
};

}  // namespace

std::variant<MeasuredTable, TableRefusal> read_measured_table(std::string_view text) {
    return TableReader(text).read();
}

}  // namespace proof
