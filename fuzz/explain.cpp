// Whole files explained: every byte is in exactly one span, and no reason is disputed.
#include "pfsdoc/explain.h"
#include "pfsdoc/module.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

class Partition final : public pfsdoc::SpanSink {
public:
    void span(const pfsdoc::Span &span) override
    {
        require(span.offset == end_ && !span.bytes.empty());
        require(span.bytes.size() <= pfsdoc::longest_span);
        require(!span.words.empty() && !span.disputed);
        end_ += span.bytes.size();
    }
    std::size_t end() const
    {
        return end_;
    }

private:
    std::size_t end_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    pfsdoc::MemorySource source(std::vector<uint8_t>(data, data + size));
    const auto identity = pfsdoc::identify(source);
    if (!identity.ok()) {
        return 0;
    }
    Partition partition;
    const auto module = pfsdoc::Module::linked();
    const pfsdoc::Status fault =
        pfsdoc::explain(module.value(), source, identity.value().kind, partition);
    require(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged);
    require(partition.end() == size);
    return 0;
}
