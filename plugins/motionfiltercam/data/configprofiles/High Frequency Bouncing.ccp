<configprofile version="2.0" name="High Frequency Bouncing">
	<group id="-1" label="Motion Filter Parameters">
		<item id="0" label="Fixate Translations">0</item>
		<item id="1" label="Translation Response Factor" type="blob">AAAAAAAAeUA=</item>
		<item id="2" label="Translation Smoothing Factor" type="blob">AAAAAAAAEEA=</item>
		<item id="3" label="Translation Max Velocity" type="blob">AAAAAAAAAAA=</item>
		<item id="4" label="Fixate Rotations">0</item>
		<item id="5" label="Rotation Response Factor" type="blob">AAAAAAAAeUA=</item>
		<item id="6" label="Rotation Smoothing Factor" type="blob">AAAAAAAAEEA=</item>
		<item id="7" label="Rotation Max Velocity" type="blob">AAAAAAAAAAA=</item>
	</group>
</configprofile>
