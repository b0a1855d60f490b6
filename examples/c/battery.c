// Asks the camera for its battery: the smallest host in C.

#include <ZELTarkaSDK/zel.h>

#include <stdio.h>

int main(void) {
  zel_camera* camera = NULL;
  zel_error error = {.size = sizeof error};
  if (zel_open(NULL, &camera, &error) != ZEL_OK) return fprintf(stderr, "%s\n", error.message), 3;
  zel_battery_result battery = {.size = sizeof battery};
  const zel_status status = zel_battery(camera, 0, &battery, &error);
  zel_close(camera);
  if (status != ZEL_OK) return fprintf(stderr, "%s\n", error.message), 1;
  printf("battery: %d %%\n", battery.level);
  return 0;
}
