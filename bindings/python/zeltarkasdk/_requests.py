"""The requests of Camera.

Made from bindings/requests.toml and the headers for C by tools/bindings/generate.py.
"""
from typing import Any

from ._buffers import Bytes, video_info
from ._values import (
    ActivationTime,
    Battery,
    Card,
    ManualExposure,
    MeteringWeights,
    Motion,
    Orientation,
    OriginOffset,
    Position,
    StoredFile,
    Timelapse,
    VideoInfo,
    VignetteGain,
    VignetteLuma,
    WhiteBalanceGain,
)


class Requests:
    """The requests that a camera answers, each of which waits for its answer.

    Requests of one kind wait for each other; those of different kinds do not. Numbers whose
    meaning only the camera knows are passed through.
    """

    __slots__ = ()

    def _ask(self, begin: str, time_limit: float | None, *arguments: object) -> Any:
        raise NotImplementedError

    def battery(self, *, time_limit: float | None = None) -> Battery:
        """Asks for the battery.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            Battery

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return Battery._make(self._ask("battery", time_limit))

    def card(self, *, time_limit: float | None = None) -> Card:
        """Asks for the memory card.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            Card

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return Card._make(self._ask("card", time_limit))

    def video_seconds_remaining(self, *, time_limit: float | None = None) -> int:
        """Asks how many seconds of video the card still takes.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 4294967295

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("video_seconds_remaining", time_limit)
        return result

    def photos_remaining(self, *, time_limit: float | None = None) -> int:
        """Asks how many photos the card still takes.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 4294967295

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("photos_remaining", time_limit)
        return result

    def serial_number(self, *, time_limit: float | None = None) -> str | None:
        """Asks for the serial number that the camera has stored.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            str; None where the camera has none, or sends what cannot be read

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: str | None = self._ask("serial_number", time_limit)
        return result

    def set_serial_number(self, serial_number: str, *, time_limit: float | None = None) -> None:
        """Stores a serial number. A text that is not ASCII is sent as nothing.

        Args:
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        self._ask("set_serial_number", time_limit, serial_number)

    def uuid(self, *, time_limit: float | None = None) -> str | None:
        """Asks for the camera's UUID.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            str; None where the camera has none, or sends what cannot be read

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: str | None = self._ask("uuid", time_limit)
        return result

    def lens_index(self, *, time_limit: float | None = None) -> int:
        """Asks for the index of the lens.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 4294967295

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("lens_index", time_limit)
        return result

    def exposure_index(self, *, time_limit: float | None = None) -> int:
        """Asks for the exposure index.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 65535

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("exposure_index", time_limit)
        return result

    def activation_time(self, *, time_limit: float | None = None) -> ActivationTime:
        """Asks when the camera was first used.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            ActivationTime

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return ActivationTime._make(self._ask("activation_time", time_limit))

    def set_activation_time(
        self, seconds: int, time_zone_minutes_west: int, *, time_limit: float | None = None
    ) -> None:
        """Stores when the camera was first used.

        Args:
            seconds: since 1970; -2147483648 to 2147483647
            time_zone_minutes_west: -2147483648 to 2147483647
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_activation_time", time_limit, seconds, time_zone_minutes_west)

    def set_local_time(
        self, seconds: int, time_zone_minutes_west: int, *, time_limit: float | None = None
    ) -> None:
        """Sets the camera's clock.

        Args:
            seconds: since 1970; -2147483648 to 2147483647
            time_zone_minutes_west: -2147483648 to 2147483647
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_local_time", time_limit, seconds, time_zone_minutes_west)

    def control_system(
        self, command: int, delay_time: int, *, time_limit: float | None = None
    ) -> None:
        """Makes the camera do one of its system commands.

        Args:
            command: the camera's code; 0 to 255
            delay_time: in the camera's unit; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("control_system", time_limit, command, delay_time)

    def cancel_system_control(self, command: int, *, time_limit: float | None = None) -> None:
        """Takes a system command back that waits for its time.

        Args:
            command: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("cancel_system_control", time_limit, command)

    def cancel_deletion(self, *, time_limit: float | None = None) -> None:
        """Ends a deletion of files that is under way.

        Args:
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        self._ask("cancel_deletion", time_limit)

    def start_recording(
        self,
        position: Position = Position(),
        motion: Motion = Motion(),
        orientation: Orientation = Orientation(),
        *,
        time_limit: float | None = None,
    ) -> None:
        """Begins a recording on the card. Records that are all zero stand for a position and a
        motion that are not known.

        Args:
            position: a Position, or a sequence of its members
            motion: a Motion, or a sequence of its members
            orientation: a Orientation, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("start_recording", time_limit, position, motion, orientation)

    def start_recording_with_extra_info(
        self,
        position: Position = Position(),
        motion: Motion = Motion(),
        orientation: Orientation = Orientation(),
        extra_info: Bytes | None = None,
        *,
        time_limit: float | None = None,
    ) -> None:
        """The same with extra information.

        Args:
            position: a Position, or a sequence of its members
            motion: a Motion, or a sequence of its members
            orientation: a Orientation, or a sequence of its members
            extra_info: JSON that is stored with the recording; bytes or anything that shows its own
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("start_recording_with_extra_info", time_limit, position, motion, orientation, extra_info)

    def start_timed_recording(
        self,
        position: Position = Position(),
        motion: Motion = Motion(),
        orientation: Orientation = Orientation(),
        extra_info: Bytes | None = None,
        *,
        time_limit: float | None = None,
    ) -> int:
        """The same; gives the camera's time stamp of the recording's start.

        Args:
            position: a Position, or a sequence of its members
            motion: a Motion, or a sequence of its members
            orientation: a Orientation, or a sequence of its members
            extra_info: JSON that is stored with the recording; bytes or anything that shows its own
            time_limit: seconds; None: the camera's own

        Returns:
            int, -9223372036854775808 to 9223372036854775807

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("start_timed_recording", time_limit, position, motion, orientation, extra_info)
        return result

    def stop_recording(self, *, time_limit: float | None = None) -> StoredFile:
        """Ends the recording.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            StoredFile

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return StoredFile._make(self._ask("stop_recording", time_limit))

    def cancel_recording(self, *, time_limit: float | None = None) -> None:
        """Ends the recording and throws it away.

        Args:
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        self._ask("cancel_recording", time_limit)

    def set_video_resolution(self, resolution: int, *, time_limit: float | None = None) -> int:
        """Sets the resolution of recordings; gives the one that the camera chose.

        Args:
            resolution: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("set_video_resolution", time_limit, resolution)
        return result

    def set_video_bitrate(self, type: int, bitrate: int, *, time_limit: float | None = None) -> int:
        """Sets the bitrate of recordings; gives the one that the camera chose.

        Args:
            type: the camera's code; 0 to 255
            bitrate: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("set_video_bitrate", time_limit, type, bitrate)
        return result

    def set_recording_limit(self, limit: int, *, time_limit: float | None = None) -> None:
        """Limits the length of recordings. The limit's low 8 bits are sent.

        Args:
            limit: in the camera's unit; -2147483648 to 2147483647
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_recording_limit", time_limit, limit)

    def recording_limit(self, *, time_limit: float | None = None) -> int:
        """Asks for the limit of recordings.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, -2147483648 to 2147483647

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("recording_limit", time_limit)
        return result

    def set_photo_size(self, size: int, *, time_limit: float | None = None) -> int:
        """Sets the size of photos; gives the one that the camera chose.

        Args:
            size: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("set_photo_size", time_limit, size)
        return result

    def set_self_timer(self, seconds: int, *, time_limit: float | None = None) -> None:
        """Sets the self-timer of photos.

        Args:
            seconds: 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_self_timer", time_limit, seconds)

    def self_timer(self, *, time_limit: float | None = None) -> int:
        """Asks for the self-timer, in seconds.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, -2147483648 to 2147483647

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("self_timer", time_limit)
        return result

    def set_key_function(self, function: int, *, time_limit: float | None = None) -> None:
        """Sets what the camera's key does.

        Args:
            function: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_key_function", time_limit, function)

    def set_triple_press_mode(self, mode: int, *, time_limit: float | None = None) -> None:
        """Sets what three presses of the key do.

        Args:
            mode: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_triple_press_mode", time_limit, mode)

    def triple_press_mode(self, *, time_limit: float | None = None) -> int:
        """Asks what three presses of the key do.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("triple_press_mode", time_limit)
        return result

    def set_mute(self, mute: int, *, time_limit: float | None = None) -> None:
        """Mutes the camera.

        Args:
            mute: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_mute", time_limit, mute)

    def set_ip_switch_mode(self, mode: int, *, time_limit: float | None = None) -> None:
        """Sets the IP switch mode.

        Args:
            mode: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_ip_switch_mode", time_limit, mode)

    def set_exposure_bias(self, bias: int, *, time_limit: float | None = None) -> None:
        """Sets the bias of the automatic exposure.

        Args:
            bias: in the camera's unit; -32768 to 32767
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_exposure_bias", time_limit, bias)

    def set_metering_mode(self, mode: int, *, time_limit: float | None = None) -> None:
        """Sets how the exposure is metered.

        Args:
            mode: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_metering_mode", time_limit, mode)

    def set_metering_weights(
        self, weights: MeteringWeights, *, time_limit: float | None = None
    ) -> None:
        """Sets the metering mode to 0 instead: the weights never reach the camera.

        Args:
            weights: a MeteringWeights, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_metering_weights", time_limit, weights)

    def set_still_program_mode(
        self, mode: int, value: int, *, time_limit: float | None = None
    ) -> None:
        """Sets the program of still pictures.

        Args:
            mode: the camera's code; 0 to 255
            value: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_still_program_mode", time_limit, mode, value)

    def set_manual_exposure(
        self, mode: int, exposure: ManualExposure, *, time_limit: float | None = None
    ) -> None:
        """Sets the manual exposure.

        Args:
            mode: the camera's code; 0 to 255
            exposure: a ManualExposure, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_manual_exposure", time_limit, mode, exposure)

    def set_white_balance(self, mode: int, *, time_limit: float | None = None) -> None:
        """Sets the white balance.

        Args:
            mode: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_white_balance", time_limit, mode)

    def set_brightness(self, brightness: int, *, time_limit: float | None = None) -> None:
        """Sets the brightness of pictures.

        Args:
            brightness: in the camera's scale; -32768 to 32767
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_brightness", time_limit, brightness)

    def set_contrast(self, contrast: int, *, time_limit: float | None = None) -> None:
        """Sets the contrast of pictures.

        Args:
            contrast: in the camera's scale; 0 to 65535
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_contrast", time_limit, contrast)

    def set_saturation(self, saturation: int, *, time_limit: float | None = None) -> None:
        """Sets the saturation of pictures.

        Args:
            saturation: in the camera's scale; 0 to 65535
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_saturation", time_limit, saturation)

    def set_hue(self, hue: int, *, time_limit: float | None = None) -> None:
        """Sets the hue of pictures.

        Args:
            hue: in the camera's scale; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_hue", time_limit, hue)

    def set_sharpness(self, sharpness: int, *, time_limit: float | None = None) -> None:
        """Sets the sharpness of pictures.

        Args:
            sharpness: in the camera's scale; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_sharpness", time_limit, sharpness)

    def set_digital_effect(self, effect: int, *, time_limit: float | None = None) -> None:
        """Sets the digital effect of pictures.

        Args:
            effect: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_digital_effect", time_limit, effect)

    def set_flicker(self, flicker: int, *, time_limit: float | None = None) -> None:
        """Sets the mains frequency against whose flicker the camera works.

        Args:
            flicker: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_flicker", time_limit, flicker)

    def flicker(self, *, time_limit: float | None = None) -> int:
        """Asks for that frequency, as the camera's code.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("flicker", time_limit)
        return result

    def set_gps_timeout(self, timeout: int, *, time_limit: float | None = None) -> None:
        """Sets how long a position counts. The low 8 bits are sent.

        Args:
            timeout: in the camera's unit; 0 to 65535
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_gps_timeout", time_limit, timeout)

    def gps_timeout(self, *, time_limit: float | None = None) -> int:
        """Asks how long a position counts.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, -2147483648 to 2147483647

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("gps_timeout", time_limit)
        return result

    def set_timelapse(self, timelapse: Timelapse, *, time_limit: float | None = None) -> None:
        """Sets the time lapse.

        Args:
            timelapse: a Timelapse, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_timelapse", time_limit, timelapse)

    def timelapse(self, *, time_limit: float | None = None) -> Timelapse:
        """Asks for the time lapse.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            Timelapse

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return Timelapse._make(self._ask("timelapse", time_limit))

    def set_timelapse_exposure_bias(self, bias: int, *, time_limit: float | None = None) -> None:
        """Sets the exposure bias of the time lapse.

        Args:
            bias: in the camera's unit; -32768 to 32767
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_timelapse_exposure_bias", time_limit, bias)

    def timelapse_exposure_bias(self, *, time_limit: float | None = None) -> int:
        """Asks for the exposure bias of the time lapse.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, -32768 to 32767

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("timelapse_exposure_bias", time_limit)
        return result

    def set_audio_bitrate(self, bits_per_second: int, *, time_limit: float | None = None) -> None:
        """Sets the bitrate of the sound. Firmware below 190 has no such setting.

        Args:
            bits_per_second: 0 to 4294967295
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError, OldFirmwareError; ValueError,
                TypeError for the arguments
        """
        self._ask("set_audio_bitrate", time_limit, bits_per_second)

    def audio_bitrate(self, *, time_limit: float | None = None) -> int:
        """Asks for the bitrate of the sound, in bits a second. Firmware below 190 has no such
        setting.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 4294967295

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError, OldFirmwareError
        """
        result: int = self._ask("audio_bitrate", time_limit)
        return result

    def lens_offset(
        self, type: int, type_info: int, *, time_limit: float | None = None
    ) -> str | None:
        """Asks for the lens offset, by which pictures are stitched, as its text.

        Args:
            type: 0: the camera's own; 0 to 255
            type_info: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            str; None where the camera has none, or sends what cannot be read

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: str | None = self._ask("lens_offset", time_limit, type, type_info)
        return result

    def set_lens_offset(
        self, type: int, type_info: int, offset: str, *, time_limit: float | None = None
    ) -> None:
        """Stores a lens offset.

        Args:
            type: 0: the camera's own; 0 to 255
            type_info: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_lens_offset", time_limit, type, type_info, offset)

    def origin_offset(
        self, type: int, type_info: int, *, time_limit: float | None = None
    ) -> OriginOffset:
        """Asks for the offset of the pictures' origin.

        Args:
            type: the camera's code; 0 to 255
            type_info: the camera's code; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            OriginOffset

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        return OriginOffset._make(self._ask("origin_offset", time_limit, type, type_info))

    def set_origin_offset(
        self, type: int, type_info: int, offset: OriginOffset, *, time_limit: float | None = None
    ) -> None:
        """Stores the offset of the pictures' origin.

        Args:
            type: the camera's code; 0 to 255
            type_info: the camera's code; 0 to 255
            offset: a OriginOffset, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_origin_offset", time_limit, type, type_info, offset)

    def set_white_balance_gain(
        self, gain: WhiteBalanceGain, *, time_limit: float | None = None
    ) -> None:
        """Stores the calibration of the white balance.

        Args:
            gain: a WhiteBalanceGain, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_white_balance_gain", time_limit, gain)

    def white_balance_gain(self, *, time_limit: float | None = None) -> WhiteBalanceGain:
        """Asks for the calibration of the white balance.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            WhiteBalanceGain

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return WhiteBalanceGain._make(self._ask("white_balance_gain", time_limit))

    def white_balance_calibration(self, *, time_limit: float | None = None) -> int:
        """Asks whether that calibration is in use, as the camera's code.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("white_balance_calibration", time_limit)
        return result

    def set_vignette_luma(self, luma: VignetteLuma, *, time_limit: float | None = None) -> None:
        """Stores the luma of the vignette's calibration.

        Args:
            luma: a VignetteLuma, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_vignette_luma", time_limit, luma)

    def vignette_luma(self, *, time_limit: float | None = None) -> VignetteLuma:
        """Asks for the luma of the vignette's calibration.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            VignetteLuma

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return VignetteLuma._make(self._ask("vignette_luma", time_limit))

    def set_vignette_gain(self, gain: VignetteGain, *, time_limit: float | None = None) -> None:
        """Stores the gain of the vignette's calibration.

        Args:
            gain: a VignetteGain, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_vignette_gain", time_limit, gain)

    def vignette_gain(self, *, time_limit: float | None = None) -> VignetteGain:
        """Asks for the gain of the vignette's calibration.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            VignetteGain

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return VignetteGain._make(self._ask("vignette_gain", time_limit))

    def vignette_calibration(self, *, time_limit: float | None = None) -> int:
        """Asks whether that calibration is in use, as the camera's code.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: int = self._ask("vignette_calibration", time_limit)
        return result

    def update_position(self, position: Position, *, time_limit: float | None = None) -> None:
        """Tells the camera where the host is. It does not answer.

        Args:
            position: a Position, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, TimeLimitError, ClosedError; ValueError, TypeError for the arguments
        """
        self._ask("update_position", time_limit, position)

    def update_motion(self, motion: Motion, *, time_limit: float | None = None) -> None:
        """Tells the camera how the host moves. It does not answer.

        Args:
            motion: a Motion, or a sequence of its members
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, TimeLimitError, ClosedError; ValueError, TypeError for the arguments
        """
        self._ask("update_motion", time_limit, motion)

    def start_preview(self, resolution: int, *, time_limit: float | None = None) -> int:
        """Starts the preview; gives the resolution that the camera chose. Pictures and streams of
        this object do so themselves.

        Args:
            resolution: the code, see PreviewFormat.h; 0 to 255
            time_limit: seconds; None: the camera's own

        Returns:
            int, 0 to 255

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("start_preview", time_limit, resolution)
        return result

    def stop_preview(self, *, time_limit: float | None = None) -> None:
        """Stops the preview, also where pictures or streams of this object need it.

        Args:
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        self._ask("stop_preview", time_limit)

    def switch_sound(self, type: int, *, time_limit: float | None = None) -> None:
        """Switches the preview's sound.

        Args:
            type: 0 off, 1 on; 0 to 255
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("switch_sound", time_limit, type)

    def create_text_file(
        self, file_name: str, size_bytes: int, content: Bytes, *, time_limit: float | None = None
    ) -> int:
        """Stores a text file; gives the camera's own code. The first 32 bytes of the name and the
        low 16 bits of the size are sent.

        Args:
            size_bytes: -2147483648 to 2147483647
            content: bytes or anything that shows its own
            time_limit: seconds; None: the camera's own

        Returns:
            int, -2147483648 to 2147483647

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        result: int = self._ask("create_text_file", time_limit, file_name, size_bytes, content)
        return result

    def video_metadata(self, file_name: str, *, time_limit: float | None = None) -> VideoInfo:
        """Asks for the metadata of a recorded video.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            VideoInfo

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        return video_info(self._ask("video_metadata", time_limit, file_name))

    def set_photo_extra_info(
        self, file_name: str, extra_info: Bytes, *, time_limit: float | None = None
    ) -> None:
        """Stores a photo's extra information. The first 64 bytes of the name are sent.

        Args:
            extra_info: bytes or anything that shows its own
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_photo_extra_info", time_limit, file_name, extra_info)

    def set_video_extra_info(
        self, file_name: str, extra_info: Bytes, *, time_limit: float | None = None
    ) -> None:
        """Stores a video's extra information. The first 64 bytes of the name are sent.

        Args:
            extra_info: bytes or anything that shows its own
            time_limit: seconds; None: the camera's own

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError; ValueError, TypeError for the
                arguments
        """
        self._ask("set_video_extra_info", time_limit, file_name, extra_info)

    def video_extra_info(self, file_name: str, *, time_limit: float | None = None) -> bytes | None:
        """Asks for a video's extra information.

        Args:
            time_limit: seconds; None: the camera's own

        Returns:
            bytes; None where the camera has none, or sends what cannot be read

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        result: bytes | None = self._ask("video_extra_info", time_limit, file_name)
        return result
