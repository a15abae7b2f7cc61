// The words of a document's first paragraph, on one line.
#pragma once

#include "lib/page/paragraph_words.h"
#include "lib/reading/paragraph_collector.h"

#include "tests/lib/reading/typed_events.h"

#include <string>

namespace tests {

// A word's parts are in brackets with the codes of their attributes, gaps as their width:
// "[One] 2 [tw][2:o]"; a page break is "/".
class WordLog final : public pfsdoc::page::WordSink {
public:
    void word(const pfsdoc::page::Word &word) override
    {
        separate();
        for (std::size_t i = 0; i < word.parts.size(); ++i) {
            log.append("[").append(codes(word.parts[i].attributes));
            log.append(word.part_text(i)).append("]");
        }
    }
    void blanks(std::size_t count, pfsdoc::AttributeSet attributes) override
    {
        separate();
        log.append(codes(attributes)).append(std::to_string(count));
    }
    void page_break_in_text() override
    {
        separate();
        log.append("/");
    }

    std::string log;

private:
    void separate()
    {
        log.append(log.empty() ? "" : " ");
    }
    static std::string codes(pfsdoc::AttributeSet attributes)
    {
        std::string text;
        for (int32_t code = 0; code < pfsdoc::attribute_codes_end; ++code) {
            if ((attributes & pfsdoc::attribute_bit(code)) != 0) {
                text.append(text.empty() ? "" : ",").append(std::to_string(code));
            }
        }
        return text.append(text.empty() ? "" : ":");
    }
};

class FirstParagraph final : public pfsdoc::BlockSink {
public:
    void paragraph(const pfsdoc::Paragraph &told) override
    {
        paragraphs += 1;
        if (paragraphs == 1) {
            first = told;
        }
    }
    void page_break(uint32_t) override {}
    void block_begin(pfsdoc::BlockKind) override {}
    void block_end() override {}
    void end_of_document() override {}

    pfsdoc::Paragraph first;
    int paragraphs = 0;
};

inline constexpr auto every_attribute = static_cast<pfsdoc::AttributeSet>(~0U);

inline std::string words_of(const TypedEvents &events, const pfsdoc::WriterOptions &options = {},
                            pfsdoc::AttributeSet supported = every_attribute)
{
    FirstParagraph blocks;
    pfsdoc::reading::ParagraphCollector collector(blocks);
    events.tell(collector);
    collector.finish();
    WordLog words;
    pfsdoc::page::split_into_words(blocks.first, options, supported, words);
    return words.log;
}

} // namespace tests
