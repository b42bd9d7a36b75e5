"""Builds a Blender scene with the cameras of a scene and their keys. One unit of Blender is one unit of the scene.

    blender -b --factory-startup --python-use-system-env --python-exit-code 1 -P blender_scene.py -- SHOT.aec SHOT.blend
"""

import math
import os
import sys

import bpy
import vortanxr as vx
from mathutils import Matrix

words = sys.argv[sys.argv.index("--") + 1 :] if "--" in sys.argv else []
if len(words) != 2:
    sys.exit("usage: blender ... -P blender_scene.py -- SHOT.aec SHOT.blend")
shot, output = words
if os.path.exists(output) and os.path.samefile(shot, output):
    sys.exit(f"{output} is the scene itself; name another file")
bpy.ops.wm.read_homefile(use_empty=True)
scene, blender = vx.read_scene(shot), bpy.context.scene
blender.render.fps, blender.frame_start, blender.frame_end = scene.fps, scene.first_frame, scene.last_frame
blender.render.resolution_x, blender.render.resolution_y = scene.width, scene.height
# Neither may be below 1.
blender.render.pixel_aspect_x, blender.render.pixel_aspect_y = max(1, scene.pixel_aspect), max(1, 1 / scene.pixel_aspect)
for camera in scene.cameras:
    made = bpy.data.objects.new(camera.name, bpy.data.cameras.new(camera.name))
    blender.collection.objects.link(made)
    made.rotation_mode, made.data.sensor_fit, made.data.clip_end = "QUATERNION", "HORIZONTAL", 1e6
    for frame, place, turn, view in zip(camera.frames, camera.position, camera.rotation, camera.field_of_view):
        heading, pitch, bank = (math.radians(degrees) for degrees in turn)
        # Up is y in the scene and z in Blender, where a camera without a rotation looks down.
        made.location = (place[0], place[2], place[1])
        made.rotation_quaternion = (
            Matrix.Rotation(heading, 3, "Z") @ Matrix.Rotation(math.pi / 2 + pitch, 3, "X") @ Matrix.Rotation(-bank, 3, "Z")
        ).to_quaternion()
        made.data.lens = made.data.sensor_width / 2 / math.tan(math.radians(view) / 2)
        made.keyframe_insert("location", frame=frame)
        made.keyframe_insert("rotation_quaternion", frame=frame)
        made.data.keyframe_insert("lens", frame=frame)
    blender.camera = blender.camera or made
bpy.ops.wm.save_as_mainfile(filepath=os.path.abspath(output))
