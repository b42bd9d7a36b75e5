#include "cli/batch/job_folder.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "cli/job/digest.h"
#include "cli/report/json_text.h"
#include "cli/terminal/output_file.h"
#include "embedded/json_values.h"
#include "system/file_content.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using embedded::Json;

constexpr int kPlanSchema = 1;
constexpr const char* kPlanName = "job.json";
constexpr const char* kResults = "results";
constexpr const char* kLogs = "logs";
constexpr std::string_view kItems = "items-";
constexpr std::size_t kItemsPerFile = 1000;
constexpr std::size_t kIdDigits = 16;
// Results lie in folders by the first digits of their ids: a million items are some 4,000 in each.
constexpr std::size_t kShardDigits = 2;
constexpr std::uint64_t kMostPlanBytes = std::uint64_t{64} << 20U;
constexpr std::uint64_t kMostItemsBytes = std::uint64_t{256} << 20U;

std::string items_name(std::size_t file) {
    std::string digits = std::to_string(file);
    digits.insert(0, digits.size() < 6 ? 6 - digits.size() : 0, '0');
    return digits + ".jsonl";
}

std::string item_line(const BatchItem& item) {
    Json line{{"id", item.id}, {"task", item.task}, {"input", embedded::json_text(item.input)}};
    if (!item.output.empty()) {
        line["output"] = embedded::json_text(item.output);
    }
    return line.dump() + '\n';
}

BatchItem item_of(const Json& line) {
    BatchItem item;
    item.id = line.at("id").get<std::string>();
    item.task = line.at("task").get<std::size_t>();
    item.input = bytes_of_json_text(line.at("input"));
    if (line.contains("output")) {
        item.output = bytes_of_json_text(line.at("output"));
    }
    const bool is_id = item.id.size() == kIdDigits && text::bytes_of_hexadecimal(item.id).has_value();
    if (!is_id) {
        throw std::runtime_error("an item has no id of 16 digits");
    }
    return item;
}

Json plan_json(const BatchPlan& plan) {
    Json tasks = Json::array();
    for (const PlannedTask& task : plan.tasks) {
        Json words = Json::array();
        for (const std::string& word : task.words) {
            words.push_back(embedded::json_text(word));
        }
        tasks.push_back({{"words", words}, {"output_option", task.output_option}});
    }
    return Json{{"schema", kPlanSchema},
                {"generator", "vxr batch plan"},
                {"base", embedded::json_text(plan.base)},
                {"limits", {{"seconds", plan.limits.seconds}, {"memory_mib", plan.limits.memory_mib}}},
                {"items", plan.item_count},
                {"items_folder", plan.items_folder},
                {"tasks", tasks}};
}

BatchPlan plan_of(const Json& json) {
    if (json.at("schema") != kPlanSchema) {
        throw std::runtime_error("it is of another version of the program");
    }
    BatchPlan plan;
    plan.base = bytes_of_json_text(json.at("base"));
    plan.limits.seconds = json.at("limits").at("seconds").get<int>();
    plan.limits.memory_mib = json.at("limits").at("memory_mib").get<int>();
    plan.item_count = json.at("items").get<std::size_t>();
    plan.items_folder = json.at("items_folder").get<std::string>();
    for (const Json& task : json.at("tasks")) {
        PlannedTask planned;
        for (const Json& word : task.at("words")) {
            planned.words.push_back(bytes_of_json_text(word));
        }
        planned.output_option = task.at("output_option").get<std::string>();
        plan.tasks.push_back(std::move(planned));
    }
    const bool sound = plan.item_count <= kMostBatchItems && plan.limits.seconds >= 1 &&
                       plan.limits.seconds <= kMostItemSeconds && plan.limits.memory_mib >= 0 &&
                       plan.limits.memory_mib <= kMostItemMemory_mib &&
                       plan.items_folder.starts_with(kItems) &&
                       plan.items_folder.find_first_of("/\\") == std::string::npos;
    if (!sound) {
        throw std::runtime_error("a value in it is out of range");
    }
    return plan;
}

void make_folder(const std::string& path) {
    std::error_code failure;
    fs::create_directories(os::native_path(path), failure);
    if (failure) {
        throw std::runtime_error("cannot make the folder " + path + ": " + failure.message());
    }
}

}  // namespace

std::vector<std::string> words_of(const PlannedTask& task, const BatchItem& item) {
    std::vector<std::string> words = task.words;
    if (!item.output.empty()) {
        words.insert(words.end(), {task.output_option, item.output});
    }
    words.insert(words.end(), {"--", item.input});
    return words;
}

std::string item_id(const PlannedTask& task, const BatchItem& item) {
    Sha256 digest;
    for (const std::string& word : words_of(task, item)) {
        digest.add(word);
        digest.add(std::string_view("\0", 1));
    }
    return digest.hexadecimal().substr(0, kIdDigits);
}

JobFolder::JobFolder(const std::string& path) : path_(os::absolute_path(path)) {}

std::string JobFolder::inside(const std::string& name) const {
    return os::text_of(os::path_of(path_) / os::path_of(name));
}

std::string JobFolder::result_path(const BatchItem& item) const {
    return inside(std::string(kResults) + '/' + item.id.substr(0, kShardDigits) + '/' + item.id + ".json");
}

std::string JobFolder::log_path(const BatchItem& item) const {
    return inside(std::string(kLogs) + '/' + item.id.substr(0, kShardDigits) + '/' + item.id + ".log");
}

void JobFolder::refuse_other_content() const {
    for (const os::FolderEntry& entry : os::entries_in(path_)) {
        const bool ours = entry.name == kPlanName || entry.name == kResults || entry.name == kLogs ||
                          entry.name.starts_with(kItems) || entry.name.starts_with('.');
        if (!ours) {
            throw std::runtime_error(path_ + " is no job folder: it holds " + text::quoted(entry.name));
        }
    }
}

void JobFolder::write_plan(BatchPlan plan, const std::vector<BatchItem>& items) const {
    if (const os::FileKind kind = os::file_state(path_).kind; kind == os::FileKind::folder) {
        refuse_other_content();
    } else if (kind != os::FileKind::missing) {
        throw std::runtime_error(path_ + " is no folder");
    }
    // Folders are made here and nowhere else: when a mount vanishes, nothing is written below where it was.
    for (const char* const kind : {kResults, kLogs}) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        for (const char high : kDigits) {
            for (const char low : kDigits) {
                make_folder(inside(std::string(kind) + '/' + high + low));
            }
        }
    }
    Sha256 digest;
    std::vector<std::string> files((items.size() + kItemsPerFile - 1) / kItemsPerFile);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string line = item_line(items[i]);
        digest.add(line);
        files[i / kItemsPerFile] += line;
    }
    plan.item_count = items.size();
    plan.items_folder = std::string(kItems) + digest.hexadecimal().substr(0, kIdDigits);
    make_folder(inside(plan.items_folder));
    for (std::size_t i = 0; i < files.size(); ++i) {
        OutputFile file(inside(plan.items_folder + '/' + items_name(i)));
        file.write(files[i]);
        file.close();
    }
    // The plan counts from here on; who reads the one before still finds its items until they are removed.
    OutputFile file(inside(kPlanName));
    file.write(plan_json(plan).dump(2) + '\n');
    file.close();
    for (const os::FolderEntry& entry : os::entries_in(path_)) {
        if (entry.name.starts_with(kItems) && entry.name != plan.items_folder) {
            std::error_code ignored;
            fs::remove_all(os::native_path(inside(entry.name)), ignored);
        }
    }
}

BatchPlan JobFolder::read_plan() const {
    const auto text = os::content_of(inside(kPlanName), kMostPlanBytes);
    if (!text) {
        const bool is_file = os::file_state(path_).kind == os::FileKind::regular;
        throw std::runtime_error(path_ + " is no job folder, or planning it did not finish" +
                                 (is_file ? "; `vxr batch plan` makes one" : ""));
    }
    try {
        return plan_of(Json::parse(*text));
    } catch (const std::exception& error) {
        throw std::runtime_error(inside(kPlanName) + ": " + error.what());
    }
}

std::vector<BatchItem> JobFolder::read_items(const BatchPlan& plan, const BatchPart& part) const {
    const std::size_t begin = plan.item_count * (part.number - 1) / part.of;
    const std::size_t end = plan.item_count * part.number / part.of;
    std::vector<BatchItem> items;
    items.reserve(end - begin);
    for (std::size_t at = begin / kItemsPerFile * kItemsPerFile; at < end;) {
        const std::string path = inside(plan.items_folder + '/' + items_name(at / kItemsPerFile));
        const auto text = os::content_of(path, kMostItemsBytes);
        if (!text) {
            throw std::runtime_error("cannot read " + path + "; if the job was planned again, begin again");
        }
        try {
            std::string_view rest = *text;
            const std::size_t next = std::min(at + kItemsPerFile, plan.item_count);
            for (; at < next; ++at) {
                const std::size_t line = std::min(rest.find('\n'), rest.size());
                if (at >= begin && at < end) {
                    items.push_back(item_of(Json::parse(rest.substr(0, line))));
                }
                rest.remove_prefix(std::min(line + 1, rest.size()));
                if (at + 1 < next && rest.empty()) {
                    throw std::runtime_error("lines are missing");
                }
            }
        } catch (const std::exception& error) {
            throw std::runtime_error(path + ": " + error.what());
        }
    }
    for (const BatchItem& item : items) {
        if (item.task >= plan.tasks.size()) {
            throw std::runtime_error(path_ + ": an item has a task that the plan does not have");
        }
    }
    return items;
}

}  // namespace cli
