#include "lib/writers/html_style.h"

namespace pfsdoc::writers {

// Text lines are half a column wider than the document's, since a browser's column is not
// always the exact width of a letter; half a column never lets another letter onto a line.
// Aligned text is moved back by what it gains.
//
// Sub- and superscript letters are smaller by a quarter and stand as far apart as others, so
// that they do not move what follows out of its column.
//
// On paper a page has 66 rows. Header and footer are fixed boxes, which browsers print on
// every page; the room for them is kept by an empty table header and footer, which are
// repeated too. Pages of more columns than the paper has at 10 per inch are printed smaller.
const std::string_view html_stylesheet = R"(
:root {
  --line: 15pt;
}
body {
  font: 12pt monospace;
  font-variant-ligatures: none;
  line-height: var(--line);
  margin: 0;
}
p {
  box-sizing: border-box;
  hyphens: none;
  margin: 0 0 0 calc(var(--left) * 1ch);
  orphans: 1;
  padding-left: calc(var(--i, 0) * 1ch);
  text-indent: calc((var(--f, 0) - var(--i, 0)) * 1ch);
  white-space: pre-wrap;
  widows: 1;
  width: calc((var(--width) + 0.5) * 1ch);
}
.center {
  margin-left: calc((var(--left) - 0.25) * 1ch);
  text-align: center;
}
.right {
  margin-left: calc((var(--left) - 0.5) * 1ch);
  text-align: right;
}
.double {
  line-height: calc(2 * var(--line));
  position: relative;
  top: calc(var(--line) / -2);
}
.word {
  white-space: pre;
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
    --paper: #fffefa;
    background: var(--desk);
    color: var(--ink);
  }
  body {
    background: var(--paper);
    border: 1px solid var(--edge);
    margin: 24pt auto;
    min-width: calc(max(85, var(--left) + var(--width) + 5) * 1ch);
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
    --line: 12pt;
  }
  body {
    display: table;
    font-size: calc(12pt * 84 / max(84, var(--left) + var(--width)));
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

const std::string_view html_stylesheet_hash = "NOSll04YEPvWpcwh7pcazXdZej09I7yfI3bbxCCyO28=";

} // namespace pfsdoc::writers
