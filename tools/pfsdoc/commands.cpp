#include "commands.h"

#include "document.h"
#include "file_output.h"
#include "interruption.h"
#include "printable.h"
#include "reading_stopped.h"

#include <cstdio>
#include <sys/stat.h>
#include <utility>

namespace pfsdoc {

namespace {

// A document that was recognised, and where its output goes.
struct Job {
    Document document;
    std::unique_ptr<FileOutput> output;
};

// Pass on what they get as long as the output takes it: what is not wanted need not be read.
class BlockGuard final : public BlockSink {
public:
    BlockGuard(Writer &writer, const FileOutput &output) : writer_(writer), output_(output) {}

    void paragraph(const Paragraph &paragraph) override
    {
        check(output_);
        writer_.paragraph(paragraph);
    }
    void page_break(uint32_t source) override
    {
        check(output_);
        writer_.page_break(source);
    }
    void block_begin(BlockKind kind) override
    {
        writer_.block_begin(kind);
    }
    void block_end() override
    {
        writer_.block_end();
    }
    void end_of_document() override
    {
        writer_.end_of_document();
    }
    static void check(const FileOutput &output)
    {
        if (output.failed()) {
            throw ReadingStopped(*output.failure());
        }
    }

private:
    Writer &writer_;
    const FileOutput &output_;
};

class EventGuard final : public EventSink {
public:
    EventGuard(EventWriter &writer, const FileOutput &output) : writer_(writer), output_(output) {}

    int32_t on_event(const Event &event, uint32_t offset) override
    {
        BlockGuard::check(output_);
        return writer_.on_event(event, offset);
    }

private:
    EventWriter &writer_;
    const FileOutput &output_;
};

// A file as a message names it.
std::string subject_of(const std::string &file)
{
    return file.empty() ? "\"\"" : file;
}

// Whether both names lead to the same file, by whatever way.
bool is_same_file(const std::string &one, const std::string &other)
{
    struct stat first {};
    struct stat second {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           S_ISREG(first.st_mode) && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// The output is made last: nothing that is wrong with the document may touch it.
Result<Job> begin(const DocumentRequest &request, bool source_offsets)
{
    if (is_same_file(request.file, request.output)) {
        return Error{ErrorKind::usage, "would be replaced by its own output",
                     "name another file with -o"};
    }
    Result<std::unique_ptr<ByteSource>> source = open_source(request.file);
    if (!source.ok()) {
        return source.error();
    }
    const Result<Identity> identity = identify(*source.value());
    if (!identity.ok()) {
        return identity.error();
    }
    const Result<Module> module = find_module(request.module, PFSDOC_LIBRARY_DIRECTORY);
    if (!module.ok()) {
        return module.error();
    }
    Result<Document> document =
        Document::from_source(std::move(source.value()), {&module.value(), source_offsets});
    if (!document.ok()) {
        return document.error();
    }
    Result<std::unique_ptr<FileOutput>> output =
        create_interruptible(request.output, request.max_output);
    if (!output.ok()) {
        return output.error();
    }
    return Job{std::move(document.value()), std::move(output.value())};
}

// Puts the output in its place if all went well, or as well as it can with a document that is
// not whole. What has gone to standard output before any other error is out; a named file is
// not made.
Status settle(FileOutput &output, const Status &fault)
{
    if (fault && fault->kind != ErrorKind::damaged) {
        output.flush();
        return fault;
    }
    const Status unwritten = output.commit();
    return unwritten ? unwritten : fault;
}

Status write_events(Job &job, EventWriter &writer, bool in_steps)
{
    EventGuard guard(writer, *job.output);
    const Status fault = job.document.read_events(guard, in_steps);
    if (!fault || fault->kind == ErrorKind::damaged) {
        writer.finish();
    }
    return settle(*job.output, fault);
}

Status write_blocks(Job &job, Writer &writer)
{
    BlockGuard guard(writer, *job.output);
    const Status fault = job.document.read(guard);
    return settle(*job.output, fault);
}

// The name that a document is known by: its file's, without the folders.
std::string title_of(const std::string &file)
{
    return file == "-" ? "" : printable(file.substr(file.rfind('/') + 1));
}

void report_losses(const std::string &subject, const Writer &writer)
{
    for (const LossEntry &entry : writer.losses().entries()) {
        std::string line = "pfsdoc: " + subject + ": not in the output: ";
        line.append(loss_words(entry.loss)).append(" (").append(std::to_string(entry.count));
        line.append(", first at byte ").append(std::to_string(entry.first_source)).append(")");
        static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    }
}

Status convert(Job &job, const ConvertRequest &request)
{
    const Format &format = *request.format;
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(*job.output, request.options);
        return write_events(job, *writer, false);
    }
    const DocumentInfo info{job.document.kind(), title_of(request.document.file)};
    const auto writer = format.make_writer(*job.output, info, request.options);
    if (!writer.ok()) {
        return writer.error();
    }
    const Status fault = write_blocks(job, *writer.value());
    if (request.report && (!fault || fault->kind == ErrorKind::damaged)) {
        report_losses(subject_of(request.document.file), *writer.value());
    }
    return fault;
}

Result<Identity> identify_file(const std::string &file)
{
    const Result<std::unique_ptr<ByteSource>> source = open_source(file);
    return source.ok() ? identify(*source.value()) : source.error();
}

std::string identity_line(const std::string &file, const Identity &identity)
{
    return printable(file)
        .append(": ")
        .append(display_name(identity.kind))
        .append(", file id ")
        .append(std::to_string(file_id(identity.kind)))
        .append(", ")
        .append(printable(identity.basis))
        .append("\n");
}

int identify_into(FileOutput &output, const std::string &file)
{
    const Result<Identity> identity = identify_file(file);
    if (!identity.ok()) {
        return report(subject_of(file), identity.error());
    }
    output.write(identity_line(file, identity.value()));
    output.flush(); // so that it stands in order among the lines on standard error
    return 0;
}

} // namespace

int report(const std::string &subject, const Error &error)
{
    std::string line = "pfsdoc: ";
    line.append(subject).append(subject.empty() ? "" : ": ").append(error.what);
    if (error.offset) {
        line.append(" (at byte ").append(std::to_string(*error.offset)).append(")");
    }
    line.append(error.remedy.empty() ? "" : "; ").append(error.remedy);
    // Where standard error is gone there is nobody to tell that it is.
    static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    return exit_code(error.kind);
}

int run_trace(const TraceRequest &request)
{
    Result<Job> job = begin(request.document, request.options.offsets);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    TraceWriter writer(*job.value().output, request.options);
    const Status fault = write_events(job.value(), writer, request.stop);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_convert(const ConvertRequest &request)
{
    const bool source_offsets = request.format->wants_offsets || request.options.offsets ||
                                request.options.raw_lines || request.report;
    Result<Job> job = begin(request.document, source_offsets);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    const Status fault = convert(job.value(), request);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_identify(const std::vector<std::string> &files)
{
    const Result<std::unique_ptr<FileOutput>> output = FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    int first_failure = 0;
    for (const std::string &file : files) {
        const int code = identify_into(*output.value(), file);
        first_failure = first_failure != 0 ? first_failure : code;
    }
    const Status fault = output.value()->commit();
    return fault ? report("", *fault) : first_failure;
}

int run_print(std::string_view text)
{
    const Result<std::unique_ptr<FileOutput>> output = FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    output.value()->write(text);
    const Status fault = output.value()->commit();
    return fault ? report("", *fault) : 0;
}

} // namespace pfsdoc
