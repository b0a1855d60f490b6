"""Prints what a camera is, and how it is.

    info.py
"""
import sys

from zeltarkasdk import Camera, ZelError


def main() -> int:
    try:
        with Camera.open() as camera:
            who, card = camera.identity(), camera.card()
            print(f"{who['name']}, serial {who['serial_number']}, firmware {who['firmware_revision']}")
            print(f"battery: {camera.battery().level} %")
            print(f"card: {card.free_bytes / 2**30:.1f} of {card.capacity_bytes / 2**30:.1f} GiB free")
            print(f"left: {camera.photos_remaining()} photos or {camera.video_seconds_remaining()} s of video")
    except ZelError as error:
        print(error, file=sys.stderr)
        return 1
    return 0


sys.exit(main())
