#include "commands.h"

#include "file_output.h"
#include "paragraph_collector.h"
#include "printable.h"
#include "read_document.h"

#include <cstdio>
#include <sys/stat.h>
#include <utility>

namespace pfsdoc {

namespace {

// A document that was recognised, and where its output goes.
struct Job {
    std::unique_ptr<ByteSource> source;
    Identity identity;
    Module module;
    std::unique_ptr<FileOutput> output;
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
Result<Job> begin(const DocumentRequest &request)
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
    Result<std::unique_ptr<FileOutput>> output = FileOutput::create(request.output);
    if (!output.ok()) {
        return output.error();
    }
    return Job{std::move(source.value()), identity.value(), module.value(),
               std::move(output.value())};
}

// Reads the job's document into a sink, and lets it finish if all went well, or as well as it
// can with a document that is not whole. What has gone to standard output before any other
// error is out; a named file is not made. `finish` answers with what makes the output useless.
template <typename Finish>
Status convert(const Job &job, EventSink &sink, const ReadOptions &options, Finish finish)
{
    const Status fault = read_document(job.module, *job.source, job.identity.kind, sink, options);
    if (fault && fault->kind != ErrorKind::damaged) {
        job.output->flush();
        return fault;
    }
    if (Status useless = finish()) {
        return useless;
    }
    const Status unwritten = job.output->commit();
    return unwritten ? unwritten : fault;
}

Status convert_events(const Job &job, EventWriter &writer, const ReadOptions &options)
{
    return convert(job, writer, options, [&writer] {
        writer.finish();
        return Status();
    });
}

Status convert_blocks(const Job &job, Writer &writer, Offsets offsets)
{
    ParagraphCollector collector(writer, line_spacing_rule(job.identity.kind));
    return convert(job, collector, {offsets, Stops::for_margins}, [&] {
        collector.finish();
        return writer.failure();
    });
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
        line.append(std::to_string(entry.count)).append(" ").append(loss_words(entry.loss));
        static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    }
}

Status convert_with(const Job &job, const ConvertRequest &request)
{
    const Format &format = *request.format;
    const Offsets offsets =
        format.wants_offsets || request.options.offsets ? Offsets::wanted : Offsets::none;
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(*job.output, request.options);
        return convert_events(job, *writer, {offsets, Stops::none});
    }
    const DocumentInfo info{job.identity.kind, title_of(request.document.file)};
    const auto writer = format.make_writer(*job.output, info, request.options);
    if (!writer.ok()) {
        return writer.error();
    }
    const Status fault = convert_blocks(job, *writer.value(), offsets);
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
    line.append(error.remedy.empty() ? "" : "; ").append(error.remedy);
    // Where standard error is gone there is nobody to tell that it is.
    static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    return exit_code(error.kind);
}

int run_trace(const TraceRequest &request)
{
    const Result<Job> job = begin(request.document);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    TraceWriter writer(*job.value().output, request.options);
    const Offsets offsets = request.options.offsets ? Offsets::wanted : Offsets::none;
    const Status fault = convert_events(job.value(), writer,
                                        {offsets, request.stop ? Stops::at_breaks : Stops::none});
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_convert(const ConvertRequest &request)
{
    const Result<Job> job = begin(request.document);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    const Status fault = convert_with(job.value(), request);
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
