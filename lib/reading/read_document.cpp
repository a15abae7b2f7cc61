#include "lib/reading/read_document.h"

#include "lib/reading/margin_records.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace pfsdoc::reading {

namespace {

bool is_professional_write(DocumentKind kind)
{
    return kind == DocumentKind::professional_write_1 || kind == DocumentKind::professional_write_2;
}

using SessionResult = Result<std::unique_ptr<Session>>;

Result<uint32_t> read_in_two_sessions(const Module &module, ByteSource &source, DocumentKind kind,
                                      Session &session, EventSink &sink, Offsets offsets)
{
    BlockFile file(source);
    SessionResult other = open_session(module, file, kind, offsets);
    if (!other.ok()) {
        return other.error();
    }
    Stitcher stitcher(sink, indents_reset(kind));
    const std::array<Session *, 2> sessions = {&session, other.value().get()};
    if (!read_with_stops(sessions, stitcher)) {
        return Error{ErrorKind::internal, "the module refuses to return to a saved position", ""};
    }
    return check_end(session.ended() ? session : *other.value(), source);
}

Result<uint32_t> read_following_margins(const Module &module, ByteSource &source, DocumentKind kind,
                                        EventSink &sink, Offsets offsets)
{
    MarginRecordSource record_source(source);
    BlockFile file(record_source);
    SessionResult opened = open_session(module, file, kind, offsets);
    if (!opened.ok()) {
        return opened.error();
    }
    Session &session = *opened.value();
    MarginFollower follower(sink);
    Stitcher stitcher(follower, indents_reset(kind), AnnouncedMargins::passed_on_if_changed);
    MarginStops stops(stitcher, record_source, session);
    session.section(sink);
    session.read(stops);
    session.ignore_tab_stops(); // each read announces them again
    while (!session.ended()) {
        stitcher.resume();
        session.read(stops);
    }
    return check_end(session, source);
}

Result<uint32_t> read_at_once(const ByteSource &source, Session &session, EventSink &sink)
{
    session.read(sink);
    if (!session.ended()) {
        return Error{ErrorKind::internal, "the module stopped before the document's end", ""};
    }
    return check_end(session, source);
}

Result<uint32_t> read_all(const Module &module, ByteSource &source, DocumentKind kind,
                          EventSink &sink, const ReadOptions &options)
{
    if (options.stops == Stops::for_margins && text_changes_margins(kind)) {
        return read_following_margins(module, source, kind, sink, options.offsets);
    }
    BlockFile file(source);
    SessionResult session = open_session(module, file, kind, options.offsets);
    if (!session.ok()) {
        return session.error();
    }
    session.value()->section(sink);
    if (options.stops == Stops::at_breaks) {
        return read_in_two_sessions(module, source, kind, *session.value(), sink, options.offsets);
    }
    return read_at_once(source, *session.value(), sink);
}

} // namespace

Result<std::unique_ptr<Session>> open_session(const Module &module, BlockFile &file,
                                              DocumentKind kind, Offsets offsets)
{
    SessionResult session = Session::create(module, file.get(), offsets);
    if (session.ok() && !session.value()->open(file_id(kind))) {
        return Error{ErrorKind::internal, "the module does not recognise the document",
                     "try another module with --module"};
    }
    return session;
}

// What distinguishes them is that the module has asked for a byte behind the last one.
Result<uint32_t> check_end(const Session &session, const ByteSource &source)
{
    if (session.tell() <= source.size()) {
        return session.tell();
    }
    return Error{ErrorKind::damaged, "is truncated: the file ends before the document does",
                 "the part that could be read was written", source.size()};
}

bool text_changes_margins(DocumentKind kind)
{
    return is_professional_write(kind);
}

IndentsReset indents_reset(DocumentKind kind)
{
    return is_professional_write(kind) ? IndentsReset::never : IndentsReset::after_break;
}

Result<uint32_t> read_document(const Module &module, ByteSource &source, DocumentKind kind,
                               EventSink &sink, const ReadOptions &options)
{
    Result<uint32_t> end = read_all(module, source, kind, sink, options);
    // A failed read is an end of data to the module, and can be behind anything it reports.
    const Status failure = source.failure();
    return failure.ok() ? end : failure.error();
}

} // namespace pfsdoc::reading
