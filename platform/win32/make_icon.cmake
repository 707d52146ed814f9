# Converts a drawing to an icon in the sizes used by displays of 96 to 288 dpi.
set(images "")
foreach(pixels 16 20 24 32 40 48)
  set(image ${ICON}.${pixels}.png)
  execute_process(COMMAND ${RSVG_CONVERT} --width ${pixels} --height ${pixels} --output ${image} ${DRAWING}
                  COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND images ${image})
endforeach()
execute_process(COMMAND ${ICOTOOL} --create --output ${ICON} ${images} COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${images})
