-- A reader for pandoc: pandoc -f pfsdoc.lua LETTER -o letter.docx
--
-- pfsdoc converts the document to pandoc's own tree, and pandoc reads that. The complication is
-- how a reader gets at the bytes. Until version 3 pandoc decodes every input as text, so the
-- reader takes no more than the file's name from it, and pandoc warns of a file "not UTF-8
-- encoded". From version 3 on a reader can ask for the bytes.
-- Test: tests/packaging/pandoc.sh.

local cut_short = 5

-- pandoc's tree of what pfsdoc makes of its arguments and standard input. pfsdoc says on
-- standard error what is wrong.
local function tree_of(arguments, bytes)
  local done, tree = pcall(pandoc.pipe, "pfsdoc", arguments, bytes)
  if not done then
    if tree.error_code ~= cut_short then
      error("pfsdoc cannot read the document", 0)
    end
    tree = tree.output
  end
  return pandoc.read(tree, "json")
end

local function append_blocks(document, more)
  for _, block in ipairs(more.blocks) do
    document.blocks:insert(block)
  end
end

local function read_bytes(bytes)
  return tree_of({"convert", "-t", "pandoc", "-"}, bytes)
end

-- One document or several, one after the other.
local function read_files(sources)
  local document
  for _, source in ipairs(sources) do
    if source.name == "" then
      error("this pandoc has no way to the bytes of standard input: name the document's file", 0)
    end
    local next_document = tree_of({"convert", "-t", "pandoc", "--", source.name}, "")
    if document then
      append_blocks(document, next_document)
    else
      document = next_document
    end
  end
  return document
end

if PANDOC_VERSION >= "3.0" then
  ByteStringReader = read_bytes
else
  Reader = read_files
end
