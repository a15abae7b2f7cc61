#include "lib/writers/html_style.h"

namespace pfsdoc::writers {

// Nothing of a page lies outside of what it is shown on. Text that would come nearer to an edge
// than so many columns (--least) is moved (--shift), the whole page alike. On the screen letters
// are as large as the page's columns let them be; on a narrow one its margins are left out, so
// that letters are larger. Columns are 0.6 em wide in all usual fonts; 0.63 leaves room for a
// scroll bar. Paragraphs wider than the page, which are rare, end where it ends, and words longer
// than a line are broken.
//
// Text lines are half a column wider than the document's, since a browser's column is not
// always the exact width of a letter; half a column never lets another letter onto a line.
// Aligned text is moved back by what it gains.
//
// Sub- and superscript letters are smaller by a quarter and stand as far apart as others, so
// that they do not move what follows out of its column.
//
// On paper a page has 66 rows. Header and footer are fixed boxes, which browsers print on
// every page; the room for them is kept by an empty table header and footer, which are
// repeated too. Pages of more columns than the paper has at 10 per inch are printed smaller; their
// edges are as wide as three usual columns, which are a 25th of what stands between them.
const std::string_view html_stylesheet = R"(
:root {
  --line: 1.25em;
  --shift: max(0, var(--least) - var(--left));
  --columns: (var(--shift) + var(--left) + var(--width) + var(--least));
}
body {
  font: 12pt monospace;
  font-variant-ligatures: none;
  line-height: var(--line);
  margin: 0;
}
p {
  --x: max(var(--least) - min(var(--i, 0), var(--f, 0)), var(--left) + var(--shift));
  box-sizing: border-box;
  hyphens: none;
  margin: 0 0 0 calc(var(--x) * 1ch);
  max-width: calc(var(--paper-width) - (var(--x) + var(--least)) * 1ch);
  orphans: 1;
  overflow-wrap: anywhere;
  padding-left: calc(var(--i, 0) * 1ch);
  text-indent: calc((var(--f, 0) - var(--i, 0)) * 1ch);
  white-space: pre-wrap;
  widows: 1;
  width: calc((var(--width) + 0.5) * 1ch);
}
.center {
  margin-left: calc((var(--x) - 0.25) * 1ch);
  text-align: center;
}
.right {
  margin-left: calc((var(--x) - 0.5) * 1ch);
  text-align: right;
}
.double {
  line-height: calc(2 * var(--line));
  position: relative;
  top: calc(var(--line) / -2);
}
.word {
  display: inline-block;
  max-width: 100%;
  text-indent: 0;
}
.tab {
  display: inline-block;
  height: 1em;
  overflow: hidden;
  text-indent: 0;
  vertical-align: top;
  white-space: pre;
  width: calc(var(--w, 0) * 1ch);
}
sub, sup {
  font-size: 0.75em;
  letter-spacing: calc(1ch / 3);
  line-height: 0;
}
sub {
  vertical-align: -0.25em;
}
sup {
  vertical-align: 0.45em;
}
@media screen {
  :root {
    --desk: #d9d9d4;
    --edge: #b4b4ac;
    --ink: #1c1c1a;
    --least: 3;
    --page: max(85, var(--columns));
    --paper: #fffefa;
    --paper-width: (100vw - 18px);
    background: var(--desk);
    color: var(--ink);
    text-size-adjust: none;
    -webkit-text-size-adjust: none;
  }
  body {
    background: var(--paper);
    border: 1px solid var(--edge);
    font-size: min(12pt, calc(100vw / (var(--page) * 0.63)));
    margin: 24pt auto;
    min-width: calc(var(--page) * 1ch);
    padding: calc(3 * var(--line)) 0;
    width: fit-content;
  }
  header {
    margin-bottom: calc(2 * var(--line));
  }
  footer {
    margin-top: calc(2 * var(--line));
  }
  .page {
    background: var(--desk);
    border: solid var(--edge);
    border-width: 1px 0;
    height: 24pt;
    margin: calc(3 * var(--line)) -1px;
  }
}
@media screen and (max-width: 600px) {
  :root {
    --least: 1;
    --page: var(--columns);
    --paper-width: 100%;
    --shift: (var(--least) - var(--left));
  }
  body {
    border-width: 0;
    margin: 0;
    min-width: 0;
    padding: calc(2 * var(--line)) 0;
    width: auto;
  }
  .page {
    margin-left: 0;
    margin-right: 0;
  }
}
@media screen and (prefers-color-scheme: dark) {
  :root {
    --desk: #0c0c0d;
    --edge: #3c3c3f;
    --ink: #dcdcd6;
    --paper: #1d1d1f;
  }
}
@page {
  margin: 0;
  size: 8.5in 11in;
}
@media print {
  :root {
    --least: max(3, (var(--left) + var(--width)) / 25);
    --line: 12pt;
    --paper-width: 8.5in;
  }
  body {
    display: table;
    font-size: calc(12pt * 84 / max(84, var(--columns)));
  }
  main {
    display: table-row-group;
  }
  body::before, body::after {
    break-inside: avoid;
    content: "";
  }
  body::before {
    display: table-header-group;
    height: calc(max(6, var(--head, 0) + 4) * var(--line));
  }
  body::after {
    display: table-footer-group;
    height: calc(max(6, var(--foot, 0) + 4) * var(--line));
  }
  header, footer {
    left: 0;
    position: fixed;
  }
  header {
    top: calc(3 * var(--line));
  }
  footer {
    bottom: calc(3 * var(--line));
  }
  .page {
    border: 0;
    break-after: page;
    height: 0;
    margin: 0;
  }
}
)";

const std::string_view html_stylesheet_hash = "tGhLSuYx9llLNA5eeCn/LfQ6UMnmaoiteM1sI1QiDQk=";

} // namespace pfsdoc::writers
