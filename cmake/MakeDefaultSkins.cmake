# Makes the two default skin archives from the built-in texts of resources/skins.
#
#   cmake -DSOURCE=<resources/skins> -DSTAGE=<work folder> -DMYZIP=<zip worker>
#         -DOUT_EN=<Default_EN.skin.zip> -DOUT_FR=<Default_FR.skin.zip> -P MakeDefaultSkins.cmake
#
# The English skin is the English built-in texts as they stand (its search page is its game
# page). The French skin is the French texts with a banner: the page's own picture on the left
# and the versions on the right, in place of the right-aligned version line. The archives hold
# their files flat and are written by the program's own zip worker.

set(version_line
    "<tr><td align=\"right\"><font face=\"Verdana, sans-serif\" size=\"1\">#VERMAME - #VERMDATA</font></td></tr>")

function(copy_text from to)
  file(COPY_FILE "${SOURCE}/${from}" "${to}")
endfunction()

# The text of a template. file(READ) drops the CR of each CR LF, so they are put back, after
# checking that every line of the file does end in CR LF.
function(read_crlf_text from out)
  file(READ "${SOURCE}/${from}" text)
  file(READ "${SOURCE}/${from}" hex HEX)
  string(LENGTH "${hex}" hex_length)
  math(EXPR bytes "${hex_length} / 2")
  string(REGEX MATCHALL "\n" line_ends "${text}")
  list(LENGTH line_ends lines)
  string(LENGTH "${text}" text_length)
  math(EXPR expected "${text_length} + ${lines}")
  if(NOT expected EQUAL bytes)
    message(FATAL_ERROR "${from}: every line must end in CR LF")
  endif()
  string(ASCII 13 cr)
  string(REPLACE "\n" "${cr}\n" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(with_banner from to picture)
  read_crlf_text(${from} text)
  string(FIND "${text}" "${version_line}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${from} has no version line to put the banner in place of")
  endif()
  set(banner "<tr><td><table border=\"0\" cellpadding=\"0\" cellspacing=\"0\" width=\"100%\"><tr>")
  string(APPEND banner "<td width=\"204\"><img border=\"0\" src=\"${picture}\" width=\"204\" height=\"110\"></td>")
  string(APPEND banner "<td align=\"right\" valign=\"bottom\"><font face=\"Verdana, sans-serif\" size=\"1\">#VERMAME - #VERMDATA</font></td>")
  string(APPEND banner "</tr></table></td></tr>")
  string(REPLACE "${version_line}" "${banner}" text "${text}")
  file(WRITE "${to}" "${text}")
endfunction()

function(zip_folder folder out)
  file(REMOVE "${out}")
  execute_process(COMMAND "${MYZIP}" "${out},${folder}/*.*" RESULT_VARIABLE status)
  if(NOT status EQUAL 0 OR NOT EXISTS "${out}")
    message(FATAL_ERROR "The zip worker could not write ${out}")
  endif()
endfunction()

set(en "${STAGE}/Default_EN")
file(REMOVE_RECURSE "${en}")
file(MAKE_DIRECTORY "${en}")
copy_text(index_en.htm "${en}/index.htm")
copy_text(list.htm "${en}/list.htm")
copy_text(listroms_en.htm "${en}/listroms.htm")
copy_text(rom_en.htm "${en}/rom.htm")
copy_text(rom_en.htm "${en}/search.htm")
zip_folder("${en}" "${OUT_EN}")

set(fr "${STAGE}/Default_FR")
file(REMOVE_RECURSE "${fr}")
file(MAKE_DIRECTORY "${fr}")
with_banner(index_fr.htm "${fr}/index.htm" index.gif)
copy_text(list.htm "${fr}/list.htm")
copy_text(listroms_fr.htm "${fr}/listroms.htm")
with_banner(rom_fr.htm "${fr}/rom.htm" rom.gif)
with_banner(rom_fr.htm "${fr}/search.htm" search.gif)
foreach(picture index.gif rom.gif search.gif)
  file(COPY_FILE "${SOURCE}/banners/${picture}" "${fr}/${picture}")
endforeach()
zip_folder("${fr}" "${OUT_FR}")
