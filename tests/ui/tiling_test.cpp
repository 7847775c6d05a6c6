#include "ui/desk/tiling.h"

#include <QStringList>

#include "support/expected_lines.h"

namespace torvane {
namespace {

QString Written(const QRect& place) {
  return QStringLiteral("%1,%2 %3x%4")
      .arg(place.x())
      .arg(place.y())
      .arg(place.width())
      .arg(place.height());
}

QSize Size(const QString& text) {
  return {text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt()};
}

// "S 500x400 600x450": a scope, an analyser (A) or a small window (G), the least and the wanted
// size, and of one that can be flat that size.
Tile Read(const QString& text) {
  const QStringList words = text.split(u' ');
  const TileRole role = words[0] == "S"   ? TileRole::Scope
                        : words[0] == "A" ? TileRole::Analyser
                                          : TileRole::Small;
  return {role, Size(words[1]), Size(words[2]), words.size() > 3 ? Size(words[3]) : QSize()};
}

TEST(TilingTest, WindowsStandAsTheTableSays) {
  std::ifstream file(TORVANE_TEST_DATA "/ui/tilings.txt");
  std::vector<std::string> lines;
  for (const std::string& line : test::LinesOf(file)) {
    lines.push_back(line);
    if (line.empty() || line[0] == '#') continue;
    const QString head = QString::fromStdString(line).section(u" => "_qs, 0, 0);
    const QSize area = Size(head.section(u": "_qs, 0, 0));
    std::vector<Tile> tiles;
    for (const QString& tile : head.section(u": "_qs, 1).split(u", "_qs)) {
      tiles.push_back(Read(tile));
    }
    const std::vector<QRect> places = TileArea(tiles, area);
    QStringList written;
    for (const QRect& place : places) written << Written(place);
    if (AreApart(places, area)) written << "apart";
    if (HasAmpleRoom(tiles, area)) written << "ample";
    const QSize least = LeastTiledArea(tiles, {4, 3});
    written << QStringLiteral("least %1x%2").arg(least.width()).arg(least.height());
    lines.back() = (head + " => " + written.join("; ")).toStdString();
  }
  test::ExpectLines("ui/tilings.txt", lines);
}

}  // namespace
}  // namespace torvane
