// The formats odt and fodt, OpenDocument text as a package and as one XML file: finds and
// loads the plug-in that writes them, and stands for its writer on this side of the border
// that odf_plugin.h describes.
//
// The plug-in is looked for in the folder that the environment variable PFSDOC_PLUGINS names,
// and nowhere else if it is set; otherwise beside the program or library that this code is
// part of, and where it is installed as seen from there. A name without a folder is never
// handed to the loader, which would search the system's library folders. Once loaded it stays:
// its code may be needed until the program ends. It is not looked for again while the variable
// stays the same: a process that has loaded it may have given up looking for files since.
// Tests: tests/lib/writers/odf_plugin_test.cpp.
#include "lib/base/scratch_file.h"
#include "lib/writers/formats.h"
#include "lib/writers/odf_plugin.h"
#include "pfsdoc/reading_stopped.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace pfsdoc::writers {

namespace {

constexpr const char *plugins_variable = "PFSDOC_PLUGINS";

// ----------------------------------------------------------------- the plug-in -----

Error unfit(const std::string &what)
{
    return {ErrorKind::internal, what,
            "install the plug-in that came with this program, or name its folder with the "
            "environment variable PFSDOC_PLUGINS"};
}

// Of the library that this code is part of, or of the program, which the loader knows by the
// name it was started by alone.
std::filesystem::path own_directory()
{
    static const char here = 0;
    Dl_info info{};
    void *map = nullptr;
    std::error_code failure;
    if (::dladdr1(&here, &info, &map, RTLD_DL_LINKMAP) != 0 && map != nullptr) {
        const char *name = static_cast<const link_map *>(map)->l_name;
        if (name != nullptr && *name != '\0') {
            return std::filesystem::canonical(name, failure).parent_path();
        }
    }
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

// Empty where it is not set.
std::string named_directory()
{
    const char *variable = std::getenv(plugins_variable);
    return variable != nullptr ? variable : "";
}

// Empty where there is none.
std::filesystem::path find_plugin(const std::string &named)
{
    std::vector<std::filesystem::path> directories;
    if (!named.empty()) {
        directories = {std::filesystem::path(named)};
    } else if (const std::filesystem::path own = own_directory(); !own.empty()) {
        directories = {own, own / PFSDOC_PLUGIN_DIRECTORY, own / "pfsdoc"};
    }
    for (const std::filesystem::path &directory : directories) {
        std::error_code failure;
        std::filesystem::path candidate =
            std::filesystem::absolute(directory / odf_plugin_file_name, failure);
        if (!failure && std::filesystem::exists(candidate, failure)) {
            return candidate;
        }
    }
    return {};
}

std::string last_load_error()
{
    const char *message = ::dlerror();
    return message != nullptr ? message : "unknown reason";
}

Result<const OdfPlugin *> load_plugin(const std::string &named)
{
    const std::filesystem::path path = find_plugin(named);
    if (path.empty()) {
        return unfit(std::string("the plug-in for OpenDocument is not installed: there is no ") +
                     odf_plugin_file_name);
    }
    void *handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return Error{ErrorKind::internal,
                     "the plug-in for OpenDocument cannot be loaded: " + last_load_error(),
                     "install librevenge and libodfgen"};
    }
    void *symbol = ::dlsym(handle, odf_plugin_symbol);
    if (symbol == nullptr) {
        return unfit(path.string() + " is no such plug-in: it has no " + odf_plugin_symbol);
    }
    const OdfPlugin *plugin = reinterpret_cast<GetOdfPlugin>(symbol)();
    if (std::string_view(plugin->build) != PFSDOC_PLUGIN_BUILD) {
        return unfit(path.string() + " belongs to another build of this program");
    }
    return plugin;
}

// The plug-in that was loaded last, and the folder that was named then.
struct LoadedPlugin {
    std::mutex mutex;
    const OdfPlugin *plugin = nullptr;
    std::string named;
};

Result<const OdfPlugin *> the_plugin()
{
    static LoadedPlugin loaded;
    const std::string named = named_directory();
    const std::lock_guard lock(loaded.mutex);
    if (loaded.plugin != nullptr && loaded.named == named) {
        return loaded.plugin;
    }
    Result<const OdfPlugin *> plugin = load_plugin(named);
    if (plugin.ok()) {
        loaded.plugin = plugin.value();
        loaded.named = named;
    }
    return plugin;
}

// ------------------------------------------------------------ this side's writer -----

// Lets the plug-in write to any output.
class BorderOutput final : public OdfOutput {
public:
    explicit BorderOutput(Output &output) : output_(output) {}

    void write(std::string_view bytes) noexcept override
    {
        try {
            output_.write(bytes);
        } catch (...) {
            failed_ = true;
        }
    }
    bool failed() const
    {
        return failed_;
    }

private:
    Output &output_;
    bool failed_ = false;
};

class PluginWriter final : public Writer {
public:
    explicit PluginWriter(Output &output) : output_(output) {}
    ~PluginWriter() override
    {
        if (writer_ != nullptr) {
            writer_->release();
        }
    }
    PluginWriter(const PluginWriter &) = delete;
    PluginWriter &operator=(const PluginWriter &) = delete;

    bool open(const OdfPlugin &plugin, OdfPackaging packaging, const DocumentInfo &info,
              const WriterOptions &options)
    {
        writer_ = plugin.open(packaging, output_, info, options);
        return writer_ != nullptr;
    }

    void paragraph(const Paragraph &paragraph) override
    {
        writer_->paragraph(paragraph);
        check();
    }
    void page_break(uint32_t source) override
    {
        writer_->page_break(source);
        check();
    }
    void block_begin(BlockKind kind) override
    {
        writer_->block_begin(kind);
    }
    void block_end() override
    {
        writer_->block_end();
    }
    void end_of_document() override
    {
        writer_->end_of_document();
        losses_ = writer_->losses();
        check();
    }

private:
    void check() const;

    BorderOutput output_;
    OdfWriter *writer_ = nullptr;
};

Error too_large_for_odf()
{
    return {ErrorKind::limit, "is too large to be written as OpenDocument",
            "write it as another format"};
}

// Ends the reading where the plug-in has failed: nothing that it writes is of use then.
void PluginWriter::check() const
{
    switch (writer_->failure()) {
    case OdfFailure::none: break;
    case OdfFailure::too_large:
    case OdfFailure::out_of_memory: throw ReadingStopped(too_large_for_odf());
    case OdfFailure::scratch: throw ReadingStopped(base::scratch_error(writer_->system_error()));
    case OdfFailure::other:
        throw ReadingStopped({ErrorKind::internal, "cannot be written as OpenDocument", ""});
    }
    if (output_.failed()) {
        throw ReadingStopped(too_large_for_odf());
    }
}

Result<std::unique_ptr<Writer>> make_odf_writer(OdfPackaging packaging, Output &output,
                                                const DocumentInfo &info,
                                                const WriterOptions &options)
{
    const Result<const OdfPlugin *> plugin = the_plugin();
    if (!plugin.ok()) {
        return plugin.error();
    }
    auto writer = std::make_unique<PluginWriter>(output);
    if (!writer->open(*plugin.value(), packaging, info, options)) {
        return too_large_for_odf();
    }
    return std::unique_ptr<Writer>(std::move(writer));
}

Result<std::unique_ptr<Writer>> make_odt_writer(Output &output, const DocumentInfo &info,
                                                const WriterOptions &options)
{
    return make_odf_writer(OdfPackaging::zip, output, info, options);
}

Result<std::unique_ptr<Writer>> make_fodt_writer(Output &output, const DocumentInfo &info,
                                                 const WriterOptions &options)
{
    return make_odf_writer(OdfPackaging::flat, output, info, options);
}

} // namespace

// ------------------------------------------------------------------------ formats -----

const Format odt_format = {
    .name = "odt",
    .extension = "odt",
    .description = "OpenDocument text, for word processors",
    .options = "page_breaks headers commands ",
    .make_writer = make_odt_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
    .needs_plugin = true,
    .is_binary = true,
    .scratch_files = 3,
};

const Format fodt_format = {
    .name = "fodt",
    .extension = "fodt",
    .description = "the same as one XML file",
    .options = "page_breaks headers commands ",
    .make_writer = make_fodt_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
    .needs_plugin = true,
    .scratch_files = 2,
};

} // namespace pfsdoc::writers
