# Turns a drawing into an icon of the sizes that displays of 96 to 288 dots an inch ask for.
set(images "")
foreach(pixels 16 20 24 32 40 48)
  set(image ${ICON}.${pixels}.png)
  execute_process(COMMAND ${RSVG_CONVERT} --width ${pixels} --height ${pixels} --output ${image} ${DRAWING}
                  COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND images ${image})
endforeach()
execute_process(COMMAND ${ICOTOOL} --create --output ${ICON} ${images} COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${images})
