"""What pictures cost in Python: their number, the processor's time and the memory, beside decoding alone.

    python_pictures.py pictures WIDTH HEIGHT RATE COUNT   shows each picture to NumPy
    python_pictures.py decoding WIDTH HEIGHT RATE COUNT   decodes for as long, and looks at none
    python_pictures.py openings COUNT                     opens the camera, asks it and closes it
"""
import itertools
import resource
import sys
import time

import numpy

from zeltarkasdk import Camera, Format


def resident() -> float:
    """The memory of this process, in MiB."""
    with open("/proc/self/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS:")) / 1024


def used() -> float:
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime


def pictures(width: int, height: int, rate: int, count: int, looks: bool) -> None:
    with Camera.open() as camera, camera.pictures(Format(width, height, rate)) as source:
        source.next(20)
        begin, processor, first = time.perf_counter(), used(), source.dropped
        if looks:
            for number, picture in enumerate(itertools.islice(source, count), 1):
                numpy.asarray(picture.luma)[height // 2, width // 4]
                if number * 10 % count == 0:
                    print(f"{number} pictures: {resident():.1f} MiB")
        else:
            time.sleep(count / rate)
        length = time.perf_counter() - begin
        share = (used() - processor) / length
        print(f"{count / length:.1f} pictures/s, {100 * share:.2f} % of a processor, {source.dropped - first} dropped")


def openings(count: int) -> None:
    for number in range(1, count + 1):
        with Camera.open() as camera:
            camera.battery()
        if number * 5 % count == 0:
            print(f"{number} openings: {resident():.1f} MiB")


if sys.argv[1] == "openings":
    openings(int(sys.argv[2]))
else:
    width, height, rate, count = map(int, sys.argv[2:])
    pictures(width, height, rate, count, sys.argv[1] == "pictures")
