# Turns the newest section of CHANGELOG.md into an entry of Debian's form, in lines of its length.
function flush(   words, count, i, line) {
  count = split(entry, words, " ")
  if (!count) return
  line = "  *"
  for (i = 1; i <= count; ++i) {
    if (length(line) + 1 + length(words[i]) > 78) { print line; line = "   " }
    line = line " " words[i]
  }
  print line
  entry = ""
}
/^## / { if (++sections > 1) exit; print "torvane (" version ") unstable; urgency=medium"; next }
!sections { next }
/^### / { flush(); print "\n  [ " substr($0, 5) " ]"; next }
/^- / { flush(); entry = substr($0, 3); next }
{ entry = entry " " $0 }
END { flush(); print "\n -- " maintainer "  " date }
