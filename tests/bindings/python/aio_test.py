"""The camera in an event loop."""
import asyncio

import pytest

from conftest import LIMIT, opened
from zeltarkasdk import AsyncCamera, Camera, ClosedError, NoCameraError, Stitched, TimeLimitError


def run(main):
    return asyncio.run(asyncio.wait_for(main, 4 * LIMIT))


def test_with_and_await_open_the_camera(simulator):
    async def main():
        async with opened(simulator) as camera:
            assert isinstance(camera, AsyncCamera) and (await camera.battery()).level == 100
        with pytest.raises(ClosedError):
            await camera.battery()
        camera = await opened(simulator)
        assert (await camera.card()).state == 0
        await camera.close()
        await camera.close()

    run(main())


def test_an_opening_that_fails_raises_where_it_is_awaited(tmp_path):
    async def main():
        opening = Camera.open(accessories=tmp_path / "bus", time_limit=0.1)
        with pytest.raises(NoCameraError):
            async with opening:
                pass
        with pytest.raises(NoCameraError):
            await Camera.open(accessories=tmp_path / "bus", time_limit=0.1)

    run(main())


def test_the_loop_goes_on_while_calls_are_awaited(attach):
    async def main(simulator):
        async with opened(simulator) as camera:
            slow = asyncio.create_task(camera.battery())
            for _ in range(5):
                assert (await camera.card()).state == 0
            assert not slow.done()
            slow.cancel()
            with pytest.raises(asyncio.CancelledError):
                await slow

    run(main(attach("--fault", "no-reply=0x4001")))


def test_many_calls_at_once_get_their_answers(simulator):
    async def main():
        async with opened(simulator) as camera:
            answers = await asyncio.gather(*(camera.battery() for _ in range(50)), camera.uuid())
            assert [one.level for one in answers[:-1]] == [100] * 50 and len(answers[-1]) == 36

    run(main())


def test_a_time_limit_and_a_close_end_calls(attach):
    async def main(simulator):
        async with opened(simulator) as camera:
            with pytest.raises(TimeLimitError):
                await camera.battery(time_limit=0.05)
            waiting = asyncio.create_task(camera.battery())
            await camera.card()
            await camera.close()
            with pytest.raises(ClosedError):
                await waiting

    run(main(attach("--fault", "no-reply=0x4001")))


def test_events_and_pictures_are_iterated(simulator):
    async def main():
        async with opened(simulator) as camera:
            async with camera.events() as events:
                simulator.tell("key 4")
                async for event in events:
                    assert event.numbers[0] == 4
                    break
                with pytest.raises(TimeLimitError):
                    await events.next(0.05)
                with pytest.raises(asyncio.TimeoutError):
                    await asyncio.wait_for(events.next(), 0.05)
                simulator.tell("key 5")
                assert (await events.next(LIMIT)).numbers[0] == 5, "nothing is lost"
            async with camera.pictures() as pictures:
                assert (await pictures.next()).luma.shape == (720, 1440)
            async with await camera.stitched_pictures(Stitched(480, 240)) as pictures:
                assert (await pictures.next()).luma.shape == (240, 480)

    run(main())


def test_a_cancellation_beside_an_event_does_not_lose_it(simulator):
    async def main():
        async with opened(simulator) as camera:
            first, second = camera.events(), camera._camera.events()
            waiting = asyncio.create_task(first.next())
            await asyncio.sleep(0)
            simulator.tell("key 6")
            second.next(LIMIT)  # in this thread, so that the loop has not looked at the first one
            waiting.cancel()
            with pytest.raises(asyncio.CancelledError):
                await waiting
            assert (await first.next(LIMIT)).numbers[0] == 6

    run(main())


def test_a_subscription_ends_with_the_camera(simulator):
    async def main():
        async with opened(simulator) as camera:
            events = camera.events()
            waiting = asyncio.create_task(events.next())
            await camera.battery()
        with pytest.raises(ClosedError):
            await waiting
        assert [event async for event in events] == []

    run(main())


def test_photos_files_and_streams_are_awaited(simulator, tmp_path):
    async def main():
        progress = []
        async with opened(simulator) as camera:
            photo = await camera.photo(progress=lambda *now: progress.append(now))
            assert photo.jpeg[:2] == b"\xff\xd8"
            assert len((await camera.bracket([0, 1])).pictures) == 2
            await camera.upload(1, "C:/a.bin", bytes(100_000))
            async with await camera.stream(tmp_path / "a.mp4") as stream:
                async with stream.packets() as packets:
                    assert (await packets.next()).key
                number = stream.add_output(tmp_path / "b.ts")
                assert (await stream.remove_output(number)).id == number
            assert stream.outputs[0].pictures > 0

    run(main())


def test_what_progress_raises_ends_the_call(attach):
    async def main(simulator):
        def stop(done, total):
            raise RuntimeError("enough")

        async with opened(simulator) as camera:
            with pytest.raises(RuntimeError, match="enough") as caught:
                await camera.photo(progress=stop)
            assert (await camera.battery()).level == 100
            with pytest.raises(RuntimeError, match="enough"):
                await camera.photo(progress=stop, time_limit=LIMIT)
            assert caught.value.__traceback__ is not None

    run(main(attach("--fault", "no-photo")))


def test_in_a_loop_a_with_statement_waits(simulator):
    async def main():
        with opened(simulator) as camera:
            assert camera.battery().level == 100

    run(main())


def test_a_cancelled_opening_leaves_the_camera_free(simulator, tmp_path):
    async def main():
        opening = asyncio.ensure_future(asyncio.wait_for(open_elsewhere(tmp_path), 0.05))
        with pytest.raises(asyncio.TimeoutError):
            await opening
        async with opened(simulator) as camera:
            assert (await camera.battery()).level == 100

    async def open_elsewhere(folder):
        return await Camera.open(accessories=folder / "empty", time_limit=LIMIT)

    run(main())
