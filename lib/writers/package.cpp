#include "lib/writers/package.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <span>
#include <zlib.h>

namespace pfsdoc::writers {

namespace {

enum Signature : uint32_t {
    local_header_signature = 0x04034B50,
    descriptor_signature = 0x08074B50,
    directory_entry_signature = 0x02014B50,
    directory_end_signature = 0x06054B50,
    long_directory_end_signature = 0x06064B50,
    long_directory_end_locator_signature = 0x07064B50,
};

enum Method : uint16_t { method_stored = 0, method_deflated = 8 };

constexpr uint16_t version_with_deflate = 20;
constexpr uint16_t version_with_long_sizes = 45;
constexpr uint16_t descriptor_follows = 1U << 3U;
constexpr uint16_t midnight = 0;
constexpr uint16_t first_of_january_1980 = 1U << 5U | 1U;

// The extra field with what 32 bits are too small for.
constexpr uint16_t long_fields_extra = 1;
constexpr uint16_t extra_header_size = 4;
constexpr uint16_t size_of_both_sizes = 16;
// In a field of 32 bits: see the extra field.
constexpr uint32_t is_elsewhere = 0xFFFFFFFF;
// Of long_directory_end, what follows its own length.
constexpr uint64_t long_directory_end_rest = 44;
// What deflating may add to content that cannot be compressed is far less than what 32 bits
// hold beyond this.
constexpr uint64_t most_bytes_of_short_entry = 0xF0000000;

struct Directory {
    uint64_t offset;
    uint64_t size;
    uint64_t entries; // far fewer than 16 bits count
};

bool needs_long_field(uint64_t value)
{
    return value >= is_elsewhere;
}

uint32_t short_field(uint64_t value)
{
    return needs_long_field(value) ? is_elsewhere : static_cast<uint32_t>(value);
}

// Numbers with their lowest byte first.
template <typename Number> void append_number(std::string &bytes, Number value)
{
    for (std::size_t i = 0; i < sizeof value; ++i) {
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
    }
}

// ------------------------------------------------------------------ what entries say -----

uint16_t version_needed(const Package::Entry &entry, bool has_long_field)
{
    return entry.has_long_sizes || has_long_field ? version_with_long_sizes : version_with_deflate;
}

// From the version to the checksum: alike in the header before an entry and in the directory.
void append_common_fields(std::string &record, const Package::Entry &entry, bool has_long_field)
{
    append_number(record, version_needed(entry, has_long_field));
    append_number<uint16_t>(record, entry.is_compressed ? descriptor_follows : 0);
    append_number<uint16_t>(record, entry.is_compressed ? method_deflated : method_stored);
    append_number(record, midnight);
    append_number(record, first_of_january_1980);
    append_number(record, entry.checksum);
}

// Only those of its fields that 32 bits are too small for, in this order.
std::string long_fields(const Package::Entry &entry)
{
    std::string fields;
    for (const uint64_t value : {entry.size, entry.compressed_size, entry.offset}) {
        if (needs_long_field(value)) {
            append_number(fields, value);
        }
    }
    return fields;
}

void append_directory_entry(std::string &directory, const Package::Entry &entry)
{
    const std::string fields = long_fields(entry);
    append_number<uint32_t>(directory, directory_entry_signature);
    append_number(directory, version_needed(entry, !fields.empty())); // made by
    append_common_fields(directory, entry, !fields.empty());
    append_number(directory, short_field(entry.compressed_size));
    append_number(directory, short_field(entry.size));
    append_number(directory, static_cast<uint16_t>(entry.name.size()));
    const std::size_t extra_size = fields.empty() ? 0 : extra_header_size + fields.size();
    append_number(directory, static_cast<uint16_t>(extra_size));
    constexpr std::size_t comment_disk_and_attributes = 10; // none of them
    directory.append(comment_disk_and_attributes, '\0');
    append_number(directory, short_field(entry.offset));
    directory.append(entry.name);
    if (!fields.empty()) {
        append_number(directory, long_fields_extra);
        append_number(directory, static_cast<uint16_t>(fields.size()));
        directory.append(fields);
    }
}

// With numbers of 64 bits, and where that record is.
void append_long_directory_end(std::string &end, const Directory &directory)
{
    append_number<uint32_t>(end, long_directory_end_signature);
    append_number(end, long_directory_end_rest);
    append_number(end, version_with_long_sizes); // made by
    append_number(end, version_with_long_sizes);
    append_number<uint64_t>(end, 0); // both disks
    append_number(end, directory.entries);
    append_number(end, directory.entries);
    append_number(end, directory.size);
    append_number(end, directory.offset);
    append_number<uint32_t>(end, long_directory_end_locator_signature);
    append_number<uint32_t>(end, 0); // its disk
    append_number(end, directory.offset + directory.size);
    append_number<uint32_t>(end, 1); // disks
}

void append_directory_end(std::string &end, const Directory &directory)
{
    if (needs_long_field(directory.offset) || needs_long_field(directory.size)) {
        append_long_directory_end(end, directory);
    }
    append_number<uint32_t>(end, directory_end_signature);
    append_number<uint32_t>(end, 0); // both disks
    append_number(end, static_cast<uint16_t>(directory.entries));
    append_number(end, static_cast<uint16_t>(directory.entries));
    append_number(end, short_field(directory.size));
    append_number(end, short_field(directory.offset));
    append_number<uint16_t>(end, 0); // length of a comment
}

} // namespace

// ---------------------------------------------------------------------- compression -----

// Deflates entry after entry; the compressor's memory is taken once.
class Package::Deflater {
public:
    Deflater()
    {
        constexpr int window_bits_without_header = -15;
        constexpr int usual_memory_level = 8;
        if (::deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window_bits_without_header,
                           usual_memory_level, Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Deflater()
    {
        ::deflateEnd(&stream_);
    }
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;

    // Hands what comes of the bytes to the package.
    void deflate(Package &package, std::string_view bytes)
    {
        run(package, bytes, Z_NO_FLUSH);
    }
    void finish(Package &package)
    {
        run(package, {}, Z_FINISH);
        ::deflateReset(&stream_);
    }

private:
    void run(Package &package, std::string_view bytes, int flush)
    {
        // zlib does not write to it, but its type does not say so.
        stream_.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
        stream_.avail_in = static_cast<uInt>(bytes.size());
        do {
            stream_.next_out = reinterpret_cast<Bytef *>(buffer_.data());
            stream_.avail_out = static_cast<uInt>(buffer_.size());
            ::deflate(&stream_, flush);
            package.send({buffer_.data(), buffer_.size() - stream_.avail_out});
        } while (stream_.avail_out == 0);
    }

    z_stream stream_{};
    std::array<char, 32768> buffer_{};
};

// -------------------------------------------------------------------------- entries -----

Package::Package(Output &output) : output_(output), deflater_(std::make_unique<Deflater>()) {}

Package::~Package() = default;

void Package::store(std::string_view name, std::string_view bytes)
{
    end_entry();
    Entry entry;
    entry.name = name;
    entry.has_long_sizes = bytes.size() > most_bytes_of_short_entry;
    entry.offset = offset_;
    entry.size = entry.compressed_size = bytes.size();
    entry.checksum = static_cast<uint32_t>(
        ::crc32_z(0, reinterpret_cast<const Bytef *>(bytes.data()), bytes.size()));
    write_local_header(entry);
    send(bytes);
    entries_.push_back(std::move(entry));
}

void Package::add(std::string_view name, std::string_view bytes)
{
    begin(name, bytes.size());
    write(bytes);
}

void Package::begin(std::string_view name, uint64_t most_bytes)
{
    end_entry();
    Entry entry;
    entry.name = name;
    entry.is_compressed = true;
    entry.has_long_sizes = most_bytes > most_bytes_of_short_entry;
    entry.offset = offset_;
    write_local_header(entry);
    entries_.push_back(std::move(entry));
    entry_is_open_ = true;
}

void Package::write(std::string_view bytes)
{
    Entry &entry = entries_.back();
    entry.size += bytes.size();
    entry.checksum = static_cast<uint32_t>(
        ::crc32_z(entry.checksum, reinterpret_cast<const Bytef *>(bytes.data()), bytes.size()));
    constexpr std::size_t most_at_once = std::numeric_limits<uInt>::max();
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), most_at_once);
        deflater_->deflate(*this, bytes.substr(0, count));
        bytes.remove_prefix(count);
    }
}

void Package::end_entry()
{
    if (entry_is_open_) {
        deflater_->finish(*this);
        Entry &entry = entries_.back();
        entry.compressed_size = offset_ - content_offset_;
        write_descriptor(entry);
        entry_is_open_ = false;
    }
}

void Package::finish()
{
    end_entry();
    const uint64_t directory_offset = offset_;
    std::string directory;
    for (const Entry &entry : entries_) {
        append_directory_entry(directory, entry);
    }
    append_directory_end(directory, {directory_offset, directory.size(), entries_.size()});
    send(directory);
}

void Package::send(std::string_view bytes)
{
    if (!bytes.empty()) {
        output_.write(bytes);
        offset_ += bytes.size();
    }
}

// -------------------------------------------------------------------------- records -----

void Package::write_local_header(const Entry &entry)
{
    std::string header;
    append_number<uint32_t>(header, local_header_signature);
    append_common_fields(header, entry, false);
    if (entry.has_long_sizes) {
        append_number<uint32_t>(header, is_elsewhere);
        append_number<uint32_t>(header, is_elsewhere);
    } else {
        append_number(header, static_cast<uint32_t>(entry.compressed_size));
        append_number(header, static_cast<uint32_t>(entry.size));
    }
    append_number(header, static_cast<uint16_t>(entry.name.size()));
    const uint16_t extra_size = entry.has_long_sizes ? extra_header_size + size_of_both_sizes : 0;
    append_number(header, extra_size);
    header.append(entry.name);
    if (entry.has_long_sizes) {
        append_number(header, long_fields_extra);
        append_number(header, size_of_both_sizes);
        append_number(header, entry.size);
        append_number(header, entry.compressed_size);
    }
    send(header);
    content_offset_ = offset_;
}

void Package::write_descriptor(const Entry &entry)
{
    std::string descriptor;
    append_number<uint32_t>(descriptor, descriptor_signature);
    append_number(descriptor, entry.checksum);
    if (entry.has_long_sizes) {
        append_number(descriptor, entry.compressed_size);
        append_number(descriptor, entry.size);
    } else {
        append_number(descriptor, static_cast<uint32_t>(entry.compressed_size));
        append_number(descriptor, static_cast<uint32_t>(entry.size));
    }
    send(descriptor);
}

} // namespace pfsdoc::writers
