#include "tests/support/faulty_block_file.h"

#include <utility>

namespace tests {
namespace {

constexpr int32_t failure = 5; // any value but 0 means failure

using Kind = Fault::Kind;

FaultyBlockFile &file_of(VwBlockFile *self)
{
    return *static_cast<FaultyBlockFile *>(self);
}

Fault next_fault(FaultyBlockFile &file, BlockOperation operation)
{
    return file.plan(++file.operations, operation);
}

// What the operation returns, whether or not it has been performed.
int32_t answer(const Fault &fault, int32_t result)
{
    return fault.kind == Kind::fails || fault.kind == Kind::fails_afterward ? failure : result;
}

} // namespace

extern "C" {

static int32_t faulty_close(VwBlockFile *self)
{
    VwBlockFile *inner = file_of(self).inner;
    return inner->close(inner);
}

static int32_t faulty_read(VwBlockFile *self, void *destination, uint32_t count,
                           uint32_t *count_read)
{
    VwBlockFile *inner = file_of(self).inner;
    const Fault fault = next_fault(file_of(self), BlockOperation::read);
    if (fault.kind == Kind::no_bytes) {
        *count_read = 0;
        return 0;
    }
    if (fault.kind == Kind::fails) {
        return failure;
    }
    const int32_t result = inner->read(inner, destination, count, count_read);
    if (fault.kind == Kind::claims) {
        *count_read = fault.value;
    }
    return answer(fault, result);
}

static int32_t faulty_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    VwBlockFile *inner = file_of(self).inner;
    const Fault fault = next_fault(file_of(self), BlockOperation::seek);
    return fault.kind == Kind::fails ? failure : answer(fault, inner->seek(inner, origin, offset));
}

static int32_t faulty_tell(VwBlockFile *self, uint32_t *position)
{
    VwBlockFile *inner = file_of(self).inner;
    const Fault fault = next_fault(file_of(self), BlockOperation::tell);
    if (fault.kind == Kind::fails) {
        return failure;
    }
    const int32_t result = inner->tell(inner, position);
    if (fault.kind == Kind::misreports) {
        *position = fault.value;
    }
    return answer(fault, result);
}

} // extern "C"

FaultyBlockFile::FaultyBlockFile(VwCharStream *stream_, FaultPlan plan_)
    : VwBlockFile{faulty_close, faulty_read, nullptr, faulty_seek, faulty_tell, nullptr, nullptr},
      stream(stream_), inner(stream_->blockFile), plan(std::move(plan_))
{
    stream->blockFile = this;
}

FaultyBlockFile::~FaultyBlockFile()
{
    stream->blockFile = inner;
}

} // namespace tests
