#include "tests/model/trials.h"

#include "tests/model/documents.h"

#include <sstream>

namespace tests::model {

namespace {

uint32_t random_read_size(Random &random)
{
    switch (random.below(5)) {
    case 0: return random.between(1, 5);
    case 1: return random.between(6, 200);
    case 2: return random.between(201, 3000);
    default: return UINT32_MAX;
    }
}

Plan plain_plan(Random &random)
{
    Plan plan;
    plan.stop_at = random.percent(60) ? Answers::To::none : Answers::To::all;
    plan.seed = random.next();
    return plan;
}

Plan varied_plan(Random &random)
{
    Plan plan;
    plan.stop_at = random.one_of({Answers::To::all, Answers::To::some, Answers::To::some});
    plan.most_per_read = random_read_size(random);
    plan.resume_percent = random.percent(40) ? random.between(10, 100) : 0;
    plan.foreign_percent = random.percent(25) ? random.between(5, 60) : 0;
    plan.reads_after_end = random.percent(70) ? 0 : random.between(1, 3);
    plan.seed = random.next();
    return plan;
}

std::string hex_of(const std::string &bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

std::string report_of(Kind kind, uint64_t number, const std::string &document, const Plan &plan)
{
    const std::string smaller = reduced(document, plan);
    std::ostringstream report;
    report << "document " << number << " of kind " << name_of(kind) << ", " << document.size()
           << " bytes; " << text_of(plan) << "\n"
           << "reduced to " << smaller.size() << " bytes: " << hex_of(smaller) << "\n";
    const auto difference = compare(smaller, plan);
    report << (difference ? text_of(*difference) : "the difference does not come again\n");
    return report.str();
}

} // namespace

Trial trial_of(Kind kind, uint64_t number)
{
    Random random(number * all_kinds.size() + static_cast<uint64_t>(kind));
    Trial trial;
    trial.document = random_document(kind, random);
    trial.plain = plain_plan(random);
    trial.varied = varied_plan(random);
    return trial;
}

std::optional<std::string> failure_of(Kind kind, uint64_t number)
{
    const Trial trial = trial_of(kind, number);
    for (const Plan &plan : {trial.plain, trial.varied}) {
        if (compare(trial.document, plan)) {
            return report_of(kind, number, trial.document, plan);
        }
    }
    return std::nullopt;
}

} // namespace tests::model
