# Runs the catalog audit over the faulty fixture and checks that it fails and
# names every planted fault.
execute_process(COMMAND ${PYTHON} ${AUDIT} --no-system --catalogs ${CATALOGS}
                OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
message("${out}${err}")
if(rc EQUAL 0)
  message(FATAL_ERROR "the audit passed a catalog full of faults")
endif()

set(expected
  "gnome/beta.json: the file name is not a version"
  "pane \"network\": unknown key \"nameref\""
  "pane \"sound\": required key \"sections\" is missing"
  "items\\[0\\]: kind \"tabs\" is not one of"
  "items\\[1\\]: 2 labelRefs for a label of 1 part"
  "items\\[1\\]: url \"settings://gnome/sound/input\" does not lie under its pane's"
  "pane \"display\" nameRef: key \"Display\" does not match its English text \"Displays\""
  "pane \"keyboard\" nameRef: key \"_Keyboard\" carries a mnemonic underscore"
  "pane \"mouse\": symbolBackground must be a list of colours of three numbers"
  "pane \"mouse\": a symbol without symbolFallback"
  "pane \"power\": url \"settings://kde/power\" does not start with settings://gnome/"
  "pane \"printers\": url \"settings://gnome/printers\" is already used by pane \"color\""
  "pane \"screen\": url \"settings://gnome/screen\" is already used by pane \"privacy\""
  "pane \"empty-group\": has neither a URL nor children"
  "pane id \"bluetooth\" is listed but no pane has it"
  "pane \"region\": is neither in the top sections nor a child of a pane"
  "interface string \"graphite\" is missing"
  "\"quit\" is not an interface string"
  "kde/6.0.json pane \"themes\": url \"settings://kde/kcm_lookandfeel\" on a group of modules"
  "kde/6.0.json pane \"kcm_lookandfeel\": url \"settings://kde/kcm_lookandfeel\" is already used by pane \"themes\""
  "pane \"kcm_colors\": opens module \"kcm_colors\" but is named by plugin \"kcm_style\""
  "pane \"keyboard\": named by module kcm_keyboard but opens nothing"
)
foreach(fault IN LISTS expected)
  if(NOT out MATCHES "FAIL [^\n]*${fault}")
    message(FATAL_ERROR "the audit did not report: ${fault}")
  endif()
endforeach()
