// Prints the camera's events in a loop of its own, and takes a photo at each press of the key; ends after so many.
//
//   watch COUNT

#include <ZELTarkaSDK/zel.h>

#include <poll.h>
#include <stdio.h>
#include <stdlib.h>

struct watch {
  zel_camera* camera;
  int left, result;
};

// Takes a photo, in the loop's own thread: a callback may wait there.
static void photograph(struct watch* watch) {
  zel_photo* photo = NULL;
  zel_error error = {.size = sizeof error};
  zel_jpeg_data jpeg = {.size = sizeof jpeg};
  if (zel_take_photo(watch->camera, NULL, 0, &photo, &error) == ZEL_OK &&
      zel_photo_get_jpeg(photo, 0, &jpeg, &error) == ZEL_OK) {
    printf("%s: %zu bytes\n", jpeg.name != NULL ? jpeg.name : "a photo", jpeg.length);
    --watch->left;
  } else {
    fprintf(stderr, "%s\n", error.message);
    watch->result = 1;
  }
  zel_photo_free(photo);
}

static void on_event(void* user, const zel_event* event) {
  printf("event %d: %d\n", (int)event->type, (int)event->numbers[0]);
  if (event->type == ZEL_KEY_PRESSED) photograph(user);
}

int main(int count, char** arguments) {
  struct watch watch = {.left = count > 1 ? atoi(arguments[1]) : 1};
  zel_options options = {.size = sizeof options, .dispatch = 1};
  zel_error error = {.size = sizeof error};
  if (zel_open(&options, &watch.camera, &error) != ZEL_OK) return fprintf(stderr, "%s\n", error.message), 3;
  zel_subscription* events = NULL;
  struct pollfd wait = {.events = POLLIN};
  if (zel_events(watch.camera, NULL, on_event, &watch, &events, &error) != ZEL_OK ||
      zel_descriptor(watch.camera, &wait.fd, &error) != ZEL_OK)
    return fprintf(stderr, "%s\n", error.message), 1;
  puts("press the camera's key");
  fflush(stdout);
  // A program with more to wait for adds its own descriptors.
  while (watch.left > 0 && watch.result == 0 && poll(&wait, 1, -1) >= 0) zel_dispatch(watch.camera, NULL);
  zel_subscription_free(events);
  zel_close(watch.camera);
  return watch.result;
}
