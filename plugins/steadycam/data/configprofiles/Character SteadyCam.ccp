<configprofile version="2.0" name="Character SteadyCam">
	<group id="-1" label="General Modes">
		<item id="1" label="Hide AttachedCam">0</item>
		<item id="2" label="Hide FollowCam">0</item>
	</group>
	<group id="-1" label="Camera Parameters">
		<item id="3" label="Translation Response Factor" type="blob">mpmZmZmZqT8=</item>
		<item id="4" label="Rotation Response Factor" type="blob">mpmZmZmZuT8=</item>
	</group>
</configprofile>
