#!/bin/sh
# Draws the three banner pictures of the French default skin (204 x 110 GIF files) with
# ImageMagick. The pictures are committed; run this again only to change them.
set -e
cd "$(dirname "$0")"
FONT=DejaVu-Sans-Bold

# banner FILE WORD ICON-DRAWING-OPTIONS
banner() {
  eval "convert -size 204x110 gradient:'#006699-#0F3F60' \
    -fill none -stroke '#FFFF00' -strokewidth 2 -draw 'roundrectangle 3,3 200,106 10,10' \
    -stroke none -fill '#FFFF00' -font $FONT -pointsize 21 -annotate +72+44 'TESSARIN' \
    -fill '#00FFFF' -pointsize 11 -annotate +74+66 '$2' \
    -fill '#FFFFFF' -pointsize 9 -annotate +74+90 'compagnon de MAME' \
    $3 $1"
}

# Main menu: a joystick.
banner index.gif 'MENU PRINCIPAL' "-stroke '#FFFFFF' -strokewidth 4 -draw 'line 36,76 36,38' \
  -stroke none -fill '#FF3030' -draw 'circle 36,32 36,20' \
  -fill '#FFFFFF' -draw 'roundrectangle 14,74 58,92 4,4' -fill '#FFFF00' -draw 'circle 50,83 50,80'"
# Game page: an arcade cabinet.
banner rom.gif 'FICHE DU JEU' "-fill '#222222' -stroke '#FFFFFF' -strokewidth 2 \
  -draw 'polygon 20,16 54,16 54,34 60,56 54,60 54,96 20,96 20,60 14,56 20,34' \
  -fill '#00FFFF' -stroke none -draw 'rectangle 24,22 50,44' \
  -fill '#FF3030' -draw 'circle 30,54 30,51' -fill '#FFFF00' -draw 'circle 42,54 42,51'"
# Search page: a magnifying glass.
banner search.gif 'RECHERCHE' "-fill none -stroke '#FFFFFF' -strokewidth 5 -draw 'circle 32,42 32,24' \
  -stroke '#FFFF00' -strokewidth 8 -draw 'line 45,56 60,78' \
  -stroke none -fill '#00FFFF' -draw 'circle 26,36 26,32'"
