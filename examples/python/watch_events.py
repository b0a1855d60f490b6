"""Watches a camera's events, and acts: each press of its key takes a photo, a low battery ends the watch.

    watch_events.py FOLDER
"""
import asyncio
import sys

from zeltarkasdk import AsyncCamera, Camera, Event, EventType


async def act(camera: AsyncCamera, event: Event, folder: str) -> bool:
    """False where nothing more is to be done."""
    if event.type == EventType.KEY_PRESSED:
        photo = await camera.photo()
        print(f"key {event.numbers[0]}: {photo.save(folder)}", flush=True)
    elif event.type == EventType.BATTERY_LOW:
        print(f"the battery is at {event.numbers[0]} %")
        return False
    return True


async def main(folder: str) -> None:
    async with Camera.open() as camera, camera.events() as events:
        print("press the camera's key", flush=True)
        async for event in events:
            if not await act(camera, event, folder):
                break


asyncio.run(main(sys.argv[1]))
