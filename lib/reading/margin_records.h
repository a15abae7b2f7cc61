// Where the text of a Professional Write document may change its margins, so that reading has to
// stop there only.
//
// The module reports margins that a record in the text has set at the start of the next read, so
// the paragraph that holds the record has to end a read. A stop costs as much as a line of text
// does, and hardly a paragraph has a record: the bytes are looked through for the mark that a
// record begins with, and for its type, while the module reads them. They may be something else,
// such as an attribute and text; then a stop is made that changes nothing. Test:
// tests/lib/reading/margin_records_test.cpp.
#pragma once

#include "lib/reading/resume.h"
#include "lib/reading/session.h"
#include "pfsdoc/byte_source.h"
#include "pfsdoc/events.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace pfsdoc::reading {

// Passes on what is read, and remembers the marks in it. A read is a block that the module has
// still to read; of the blocks before only the last mark matters.
class MarginRecordSource final : public ByteSource {
public:
    explicit MarginRecordSource(ByteSource &source) : source_(source) {}

    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override;
    uint32_t size() const override
    {
        return source_.size();
    }
    Status failure() const override
    {
        return source_.failure();
    }
    // Whether a byte that may begin a record has been read between these positions, the second
    // one not included, or in an earlier read behind the first one.
    bool may_have_record_in(uint32_t begin, uint32_t end) const;

private:
    ByteSource &source_;
    std::vector<uint32_t> marks_;    // positions in the last read
    uint32_t earlier_marks_end_ = 0; // behind the last mark of earlier reads
};

// Stands between a session and a stitcher: of the stops that the stitcher asks for, makes those
// behind paragraphs that may hold a record.
class MarginStops final : public EventSink {
public:
    MarginStops(Stitcher &stitcher, const MarginRecordSource &source, const Session &session)
        : stitcher_(stitcher), source_(source), session_(session)
    {
    }

    int32_t on_event(const Event &event, uint32_t offset) override;
    void on_characters(std::string_view bytes) override;

private:
    Stitcher &stitcher_;
    const MarginRecordSource &source_;
    const Session &session_;
    uint32_t paragraph_begin_ = 0;
};

} // namespace pfsdoc::reading
